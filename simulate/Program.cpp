#include "simulate/Program.h"

#include <algorithm>

#include "simulate/DrawnFrame.h"
#include "simulate/DrawnSwitch.h"
#include "simulate/Model.h"
#include "switchfile/SwitchFile.h"

namespace Simulate {
namespace {

using Plexa::IntfId;
using SdkSeam::SdkFunction;
using SoftChip::DigestFate;
using Attribute = Do::RequestAttribute;

IntfId named(std::string const& name) {
    return *IntfId::fromName(name);
}

// What a seed's program does besides the ordinary.
struct Mood {
    bool reckless = false;     // clients do what ends the process
    bool wildDigests = false;  // digests say what ends the process
    bool calls = false;        // calls fail
    bool phase0 = false;       // answers are late, lost, refused, for others
    bool counters = false;     // stall, start anew
    bool digests = false;      // lost, doubled, held
    bool forges = false;       // learn messages from nowhere
    bool socket = false;       // fills up
    bool forwarding = false;   // changes under way
    bool restarts = false;     // the agent restarts
    bool vanishes = false;     // clients go without withdrawing
};

Mood drawMood(Random& random) {
    Mood mood;
    mood.reckless = random.chance(15);
    mood.wildDigests = random.chance(15);
    for (auto* const fault :
         {&mood.calls, &mood.phase0, &mood.counters, &mood.digests, &mood.forges, &mood.socket}) {
        *fault = random.chance(35);
    }
    mood.forges = mood.forges || mood.wildDigests;
    mood.forwarding = random.chance(60);
    mood.restarts = random.chance(35);
    mood.vanishes = random.chance(50);
    return mood;
}

class Drawer {
  public:
    Drawer(Random& random, std::vector<Event>& events)
        : random_(random), mood_(drawMood(random)), events_(events) {
        for (auto const* name :
             {"Ethernet1", "Ethernet2", "Ethernet3", "Ethernet4", "Ethernet4.100", "Ethernet5",
              "Ethernet7", "Lag1", "Ethernet1", "Ethernet2"}) {
            ingress_.push_back(named(name));
        }
        for (auto const* name :
             {"Ethernet1", "Ethernet2", "Ethernet4", "Ethernet4.100", "Ethernet5", "Ethernet6",
              "Lag1", "Ethernet7", "Ethernet8", "Cpu", "Vlan10", "Lag2", "Lag1.7"}) {
            any_.push_back(named(name));
        }
        told_ = events;
        for (Event const& told : events) {
            if (auto const* const port = scenarioEvent<Do::PortToIntfId>(told)) {
                ports_.push_back(port->port);
            }
        }
    }

    void beginning() {
        for (unsigned client = 0; client < 2; ++client) {
            if (random_.chance(60)) {
                appear(client);
                Do::Request request{.id = requestId(client, 1),
                                    .intf = random_.pick(ingress_),
                                    .raw = drawFrame(random_, client, 1)};
                request.valid = random_.chance(70);
                add(std::move(request));
            }
            if (random_.chance(30)) {
                add(Do::Result{requestId(client, client + 1)});
            }
        }
        start();
        if (mood_.forges && random_.chance(40)) {
            // The chip's own digests are lost, so the forged ones give the answers.
            add(DigestsSuffer{.fate = DigestFate::lost, .window = {.times = 100000}});
        }
    }

    void one() {
        auto const dice = random_.below(100);
        if (dice < 34) {
            turns();
        } else if (dice < 62) {
            request();
        } else if (dice < 70) {
            client();
        } else if (dice < 78) {
            faults();
        } else if (dice < 84 && mood_.forwarding) {
            forwarding();
        } else if (dice < 89 && mood_.forges) {
            forge();
        } else if (dice == 99 && mood_.restarts) {
            restart();
        } else {
            add(ChipStep());
        }
    }

  private:
    void add(Event event) { events_.push_back(std::move(event)); }
    unsigned someone() { return static_cast<unsigned>(random_.below(clientCount)); }
    std::uint32_t someReq() { return static_cast<std::uint32_t>(random_.between(1, 5)); }
    PacketTracer::RequestId someRequest() {
        unsigned const client = someone();
        return requestId(client, someReq());
    }
    std::uint64_t nth() { return random_.between(1, 3); }
    std::uint64_t times() { return random_.chance(15) ? 40 : random_.between(1, 3); }
    Window window() { return {nth(), times()}; }

    void start() {
        add(Do::Start{.pktTracerSupported = !random_.chance(12),
                      .session = Model::session,
                      .device = Model::device});
    }

    void turns() {
        if (random_.chance(5)) {
            bool const usual = random_.chance(50);
            add(Do::YieldAfter{usual ? 64 : static_cast<std::uint32_t>(random_.below(4))});
        }
        auto const times = random_.between(1, 6);
        add(Turns{times, random_.chance(75)});
    }

    void appear(unsigned client) {
        bool const configFirst = random_.chance(50);
        Event const config = Do::ClientConfig{clientName(client)};
        Event const status = Do::ClientStatus{clientName(client)};
        add(configFirst ? config : status);
        add(configFirst ? status : config);
    }

    void request() {
        unsigned const client = someone();
        std::uint32_t const req = someReq();
        auto const dice = random_.below(100);
        if (dice < 55) {
            if (!mood_.reckless || random_.chance(90)) {
                add(Do::RequestDel{requestId(client, req)});
            }
            add(drawnRequest(client, req));
        } else if (dice < 72) {
            add(Do::RequestSet{requestId(client, req), Attribute::valid, random_.chance(80)});
        } else if (dice < 78 && mood_.reckless) {
            random_.chance(80) ? change(client, req) : moveAside(client, req);
        } else if (dice < 80) {
            add(RequestDelAll{clientName(client)});
        } else {
            add(Do::RequestDel{requestId(client, req)});
        }
    }

    Do::Request drawnRequest(unsigned client, std::uint32_t req) {
        Do::Request request{.id = requestId(client, req),
                            .intf = random_.pick(ingress_),
                            .valid = random_.chance(75),
                            .raw = drawFrame(random_, client, req)};
        auto const dice = random_.below(100);
        if (dice < 3) {
            request.etherType = static_cast<std::uint16_t>(random_.between(0x8846, 0x8849));
        } else if (dice < 6) {
            auto const flags = random_.between(1, 3);
            request.mpls = (flags & 1) != 0;
            request.gre = (flags & 2) != 0;
        } else if (dice < 9) {
            request.raw = {};
        } else if (dice < 10) {
            Bytes raw(request.raw.view().begin(), request.raw.view().end());
            raw.resize(random_.chance(50) ? 9236 : 9237);
            request.raw = raw;
        } else if (dice < 14) {
            request.intf = random_.pick(any_);
        }
        return request;
    }

    // An attribute other than `valid`. Each seed draws a value of each kind, of which one is used.
    void change(unsigned client, std::uint32_t req) {
        Do::RequestSet set{requestId(client, req)};
        set.attribute = static_cast<Attribute>(random_.between(1, 5));
        bool const isEtherType = set.attribute == Attribute::etherType;
        auto const number = isEtherType ? random_.between(0x8846, 0x8849) : random_.below(2);
        IntfId const intf = random_.pick(ingress_);
        Vanta::Bytes const raw = random_.chance(80) ? drawFrame(random_, client, req) : Bytes();
        switch (set.attribute) {
            case Attribute::etherType:
                set.value = static_cast<std::uint16_t>(number);
                break;
            case Attribute::intf:
                set.value = intf;
                break;
            case Attribute::raw:
                set.value = raw;
                break;
            default:
                set.value = number != 0;
        }
        add(std::move(set));
        if (random_.chance(50)) {
            validAgain(client, req);
        }
    }

    // A port and its sub-interface enter the chip at the same port, so only the interface changes
    // in the job.
    void moveAside(unsigned client, std::uint32_t req) {
        Do::Request request = drawnRequest(client, req);
        request.intf = named("Ethernet4");
        request.valid = true;
        add(std::move(request));
        add(Do::RequestSet{requestId(client, req), Attribute::intf, named("Ethernet4.100")});
        validAgain(client, req);
    }

    void validAgain(unsigned client, std::uint32_t req) {
        for (bool const valid : {false, true}) {
            add(Do::RequestSet{requestId(client, req), Attribute::valid, valid});
        }
    }

    void client() {
        unsigned const client = someone();
        auto const dice = random_.below(100);
        if (dice < 40) {
            if (!mood_.reckless || random_.chance(85)) {
                leave(client);
            }
            appear(client);
        } else if (dice < 55) {
            leave(client);
        } else if (dice < 70 && mood_.vanishes) {
            random_.chance(50) ? add(Do::ClientConfigDel{clientName(client)})
                               : add(Do::ClientStatusDel{clientName(client)});
        } else if (dice < 90) {
            comeBack(client);
        } else {
            replace(clientName(client));
        }
    }

    // An entry gets another entity; only reckless programs put a fresh one or the one in hand
    // there.
    void replace(Vanta::String const& client) {
        bool const isConfig = random_.chance(50);
        auto const what = mood_.reckless ? random_.below(4) : random_.between(1, 2);
        auto const entity = static_cast<Do::Entity>(what);
        if (what == 3) {
            isConfig ? add(ConfigReturns{client}) : add(StatusReturns{client});
        } else {
            isConfig ? add(Do::ClientConfig{client, entity})
                     : add(Do::ClientStatus{client, entity});
        }
    }

    // Withdraws everything first, as a client should; results of its requests go with them.
    void leave(unsigned client) {
        if (!mood_.vanishes || random_.chance(60)) {
            add(RequestDelAll{clientName(client)});
        }
        add(Do::ClientConfigDel{clientName(client)});
        add(Do::ClientStatusDel{clientName(client)});
    }

    void comeBack(unsigned client) {
        add(ConfigReturns{clientName(client)});
        add(StatusReturns{clientName(client)});
    }

    void restart() {
        add(Do::Stop());
        for (auto count = random_.below(3); count > 0; --count) {
            add(Do::RequestDel{someRequest()});
            add(Turns{1, random_.chance(50)});
            add(Do::Result{someRequest()});
        }
        if (random_.chance(20)) {
            client();
        }
        if (mood_.reckless && mood_.calls && random_.chance(30)) {
            fail(SdkFunction::digestRegister);
        }
        start();
    }

    // The registration is called once in a life of the tracer.
    void fail(SdkFunction call) {
        Window const window{call == SdkFunction::digestRegister ? 1 : nth(), times()};
        add(CallFails{call, window, random_.chance(50) ? 13 : -2});
    }

    void faults() {
        auto const dice = random_.below(100);
        if (dice < 25 && mood_.calls) {
            using enum SdkFunction;
            static std::vector<SdkFunction> const calls{
                getPktCounters, getPktCounters, genOnePkt,        genOnePkt,
                disableAppId,   disablePktGen,  digestDeregister, notifyAck};
            fail(random_.pick(calls));
        } else if (dice < 55 && mood_.phase0) {
            phase0();
        } else if (dice < 70 && mood_.counters) {
            counters();
        } else if (dice < 85 && mood_.digests) {
            if (random_.chance(30)) {
                add(ReleaseHeld());
            }
            auto const fate = static_cast<DigestFate>(random_.between(1, 3));
            Window const window{nth(), random_.between(1, 3)};
            add(DigestsSuffer{fate, window, static_cast<std::uint32_t>(random_.below(3))});
        } else if (dice < 95 && mood_.socket) {
            static std::vector<std::uint64_t> const rooms{0, 5, 10, 12, 19, 25, 40, 200, 24000};
            add(Room{random_.pick(rooms)});
        } else if (dice >= 97) {
            add(FaultsEnd());
        }
    }

    void phase0() {
        switch (random_.below(5)) {
            case 0: {
                auto const turns = static_cast<std::uint32_t>(random_.between(1, 6));
                return add(Phase0Late{turns, window()});
            }
            case 1:
                return add(Phase0Lost{{nth(), 1}});
            case 2:
                return add(Phase0Status{7, window()});
            case 3:
                return add(Phase0Drop{random_.pick(ingress_)});
            default:
                return add(Phase0Ask{random_.pick(ingress_)});
        }
    }

    void counters() {
        if (random_.chance(60)) {
            bool const on = random_.chance(50);
            for (std::uint8_t pipe = 0; pipe < 4; ++pipe) {
                add(Stall{pipe, on});
            }
            return;
        }
        static std::vector<std::uint64_t> const counts{0, 1, 2, ~std::uint64_t{0}};
        auto const pipe = static_cast<std::uint8_t>(random_.below(4));
        add(CounterStarts{pipe, random_.pick(counts)});
    }

    void forwarding() {
        IntfId const intf = random_.pick(any_);
        Bridging::VlanId const vlan(static_cast<std::uint16_t>(10 * random_.between(1, 4)));
        if (random_.chance(40)) {
            return add(random_.pick(told_));
        }
        switch (random_.below(12)) {
            case 0:
                return port();
            case 1:
                return add(Do::PortToIntfIdDel{random_.pick(ports_)});
            case 2:
                return add(Do::PortToIntfId{random_.pick(ports_), intf});
            case 3:
                return add(Do::LagToPort{random_.chance(70) ? named("Lag1") : intf});
            case 4:
                return add(Do::LagToPortDel{named("Lag1")});
            case 5:
                return add(Do::PortToLag{intf, named("Lag2")});
            case 6:
                return add(Do::PortToLagDel{named("Ethernet5")});
            case 7:
                return add(drawnVlan(vlan));
            case 8:
                return add(Do::VlanDel{vlan});
            case 9:
                return add(Do::CpuPort{intf});
            case 10:
                return add(Do::CpuPortDel{named("Ethernet8")});
            default:
                return add(ChipPortUp{random_.pick(ports_), random_.chance(60)});
        }
    }

    // Another port information for a port would change the packet's job; only reckless programs do
    // that.
    void port() {
        Do::Port const port{
            random_.pick(ingress_), static_cast<std::uint8_t>(random_.below(4)),
            static_cast<std::uint16_t>(random_.chance(10) ? 456 : random_.below(128))};
        mood_.reckless ? add(port) : add(Do::PortDel{port.intf});
    }

    // With no members, with the CPU alone, or with some.
    Do::Vlan drawnVlan(Bridging::VlanId id) {
        Do::Vlan vlan{.id = id, .internal = random_.chance(50)};
        unsigned const each = random_.chance(25) ? 0 : 35;
        for (auto const& member : any_) {
            if (random_.chance(member == named("Cpu") ? 50 : each)) {
                vlan.intf.push_back(member);
            }
        }
        return vlan;
    }

    void forge() {
        Forge forged;
        auto const dice = random_.below(100);
        std::size_t const count = dice < 70   ? random_.between(1, 4)
                                  : dice < 80 ? 0
                                  : dice < 90 ? random_.between(450, 460)
                                              : random_.between(5, 40);
        for (std::size_t i = 0; i < count; ++i) {
            forged.entries.push_back(drawEntry());
        }
        add(std::move(forged));
    }

    SdkSeam::TraceDigest drawEntry() {
        static std::vector<std::uint16_t> const domains{10, 20, 30, 40, 0, 4094};
        SdkSeam::TraceDigest entry;
        entry.pktId = static_cast<std::uint16_t>(random_.chance(15) ? 65000 : random_.below(6));
        entry.routed = random_.chance(40) ? 255 : 0;
        entry.copyToCpu = random_.chance(entry.routed != 0 ? 60 : 30) ? 2 : 0;
        entry.dropCtl = random_.chance(15) ? 1 : 0;
        entry.l2Domain = random_.pick(domains);
        entry.egrPort = random_.chance(45)   ? 511
                        : random_.chance(80) ? random_.pick(ports_)
                                             : static_cast<std::uint16_t>(random_.below(457));
        if (mood_.wildDigests && random_.chance(15)) {
            entry.l2Domain = 4095;
        } else if (mood_.wildDigests && random_.chance(8)) {
            entry.egrPort = static_cast<std::uint16_t>(random_.between(455, 520));
        } else if (!mood_.wildDigests && entry.l2Domain == 0) {
            entry.routed = 0;
        }
        return entry;
    }

    Random& random_;
    Mood const mood_;
    std::vector<Event>& events_;
    std::vector<IntfId> ingress_;
    std::vector<IntfId> any_;
    std::vector<std::uint16_t> ports_;
    std::vector<Event> told_;  // the switch's own forwarding state
};

// A job is answered. The chip refuses the next one until the packet ids have wrapped; that job may
// then get the packet id of the first one's answer, which its digest completes once more.
void drawLongLife(Random& random, std::vector<Event>& events) {
    constexpr std::uint64_t refused = 65535;
    auto const request = [&](std::uint32_t req) {
        events.push_back(Do::Request{
            .id = requestId(0, req), .intf = named("Ethernet1"), .raw = drawFrame(random, 0, req)});
    };
    events.push_back(Do::ClientConfig{clientName(0)});
    events.push_back(Do::ClientStatus{clientName(0)});
    events.push_back(Do::Start{.session = Model::session, .device = Model::device});
    request(1);
    events.push_back(Turns{6, true});
    auto const times = random.chance(50) ? refused : random.between(refused - 2, refused + 2);
    events.push_back(CallFails{SdkFunction::genOnePkt, {1, times}, 1});
    request(2);
    events.push_back(Turns{3 * refused});
    events.push_back(Turns{12, true});
}

}  // namespace

Program drawProgram(std::uint64_t seed, unsigned steps) {
    Random random(seed);
    Program program;
    program.seed = seed;
    program.drawn.model = SwitchFile::parseSwitchFile(drawSwitch(random), "drawn");
    program.events = tellForwarding(program.drawn.model);
    if (seed % longLives == 0) {
        drawLongLife(random, program.events);
        return program;
    }
    Drawer drawer(random, program.events);
    drawer.beginning();
    auto const told = program.events.size();
    while (program.events.size() < told + steps) {
        drawer.one();
    }
    return program;
}

}  // namespace Simulate
