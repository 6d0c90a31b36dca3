#include "simulate/Program.h"

#include <algorithm>

#include "simulate/DrawnFrame.h"
#include "simulate/DrawnSwitch.h"

namespace Simulate {
namespace {

using Plexa::IntfId;

IntfId named(std::string const& name) {
    return *IntfId::fromName(name);
}

// What a seed is like.
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
            if (told.kind == Kind::portToIntfId) {
                ports_.push_back(static_cast<std::uint16_t>(told.a));
            }
        }
    }

    void beginning() {
        for (unsigned client = 0; client < 2; ++client) {
            if (random_.chance(60)) {
                appear(client);
                add({.kind = Kind::request,
                     .client = client,
                     .req = 1,
                     .intf = random_.pick(ingress_),
                     .a = 0x800,
                     .raw = drawFrame(random_, client, 1)});
                events_.back().flag = random_.chance(70);
            }
            if (random_.chance(30)) {
                add({.kind = Kind::result, .client = client, .req = client + 1});
            }
        }
        add({.kind = Kind::start, .flag = !random_.chance(12)});
        if (mood_.forges && random_.chance(40)) {
            // The chip's own digests are lost, so those from nowhere give the answers.
            add({.kind = Kind::digestFate, .a = 1, .b = 1, .c = 100000});
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
            add({.kind = Kind::chipStep});
        }
    }

  private:
    void add(Event event) { events_.push_back(std::move(event)); }
    unsigned someone() { return static_cast<unsigned>(random_.below(clientCount)); }
    std::uint32_t someReq() { return static_cast<std::uint32_t>(random_.between(1, 5)); }
    std::uint64_t nth() { return random_.between(1, 3); }
    std::uint64_t times() { return random_.chance(15) ? 40 : random_.between(1, 3); }

    void turns() {
        if (random_.chance(5)) {
            add({.kind = Kind::yieldAfter, .a = random_.chance(50) ? 64 : random_.below(4)});
        }
        add({.kind = Kind::turn, .a = random_.between(1, 6), .flag = random_.chance(75)});
    }

    void appear(unsigned client) {
        bool const configFirst = random_.chance(50);
        Event const config{.kind = Kind::clientConfig, .client = client};
        Event const status{.kind = Kind::clientStatus, .client = client};
        add(configFirst ? config : status);
        add(configFirst ? status : config);
    }

    void request() {
        unsigned const client = someone();
        std::uint32_t const req = someReq();
        auto const dice = random_.below(100);
        if (dice < 55) {
            if (!mood_.reckless || random_.chance(90)) {
                add({.kind = Kind::requestDel, .client = client, .req = req});
            }
            put(client, req);
        } else if (dice < 72) {
            add({.kind = Kind::requestSet,
                 .client = client,
                 .req = req,
                 .a = RequestAttribute::valid,
                 .b = random_.chance(80) ? 1u : 0u});
        } else if (dice < 78 && mood_.reckless) {
            random_.chance(80) ? change(client, req) : moveAside(client, req);
        } else if (dice < 80) {
            add({.kind = Kind::requestDelAll, .client = client});
        } else {
            add({.kind = Kind::requestDel, .client = client, .req = req});
        }
    }

    void put(unsigned client, std::uint32_t req) {
        Event event{.kind = Kind::request,
                    .client = client,
                    .req = req,
                    .intf = random_.pick(ingress_),
                    .a = 0x800,
                    .flag = random_.chance(75),
                    .raw = drawFrame(random_, client, req)};
        auto const dice = random_.below(100);
        if (dice < 3) {
            event.a = random_.between(0x8846, 0x8849);
        } else if (dice < 6) {
            event.b = random_.between(1, 3);
        } else if (dice < 9) {
            event.raw.clear();
        } else if (dice < 10) {
            event.raw.resize(random_.chance(50) ? 9236 : 9237);
        } else if (dice < 14) {
            event.intf = random_.pick(any_);
        }
        add(std::move(event));
    }

    void change(unsigned client, std::uint32_t req) {
        Event event{.kind = Kind::requestSet, .client = client, .req = req};
        event.a = random_.between(RequestAttribute::etherType, RequestAttribute::raw);
        event.b = event.a == RequestAttribute::etherType ? random_.between(0x8846, 0x8849)
                                                         : random_.below(2);
        event.intf = random_.pick(ingress_);
        if (random_.chance(80)) {
            event.raw = drawFrame(random_, client, req);
        }
        add(std::move(event));
        if (random_.chance(50)) {
            validAgain(client, req);
        }
    }

    // A port and its sub-interface are one place in the chip, so of the job only the interface
    // changes.
    void moveAside(unsigned client, std::uint32_t req) {
        put(client, req);
        events_.back().intf = named("Ethernet4");
        events_.back().flag = true;
        add({.kind = Kind::requestSet,
             .client = client,
             .req = req,
             .intf = named("Ethernet4.100"),
             .a = RequestAttribute::intf});
        validAgain(client, req);
    }

    void validAgain(unsigned client, std::uint32_t req) {
        for (std::uint64_t const valid : {0, 1}) {
            add({.kind = Kind::requestSet,
                 .client = client,
                 .req = req,
                 .a = RequestAttribute::valid,
                 .b = valid});
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
            add({.kind = random_.chance(50) ? Kind::clientConfigDel : Kind::clientStatusDel,
                 .client = client});
        } else if (dice < 90) {
            comeBack(client);
        } else {
            add({.kind = random_.chance(50) ? Kind::clientConfig : Kind::clientStatus,
                 .client = client,
                 .a = mood_.reckless ? random_.below(4) : random_.between(1, 2)});
        }
    }

    // Withdraws everything first, as a client should; results of its requests go with them.
    void leave(unsigned client) {
        if (!mood_.vanishes || random_.chance(60)) {
            add({.kind = Kind::requestDelAll, .client = client});
        }
        add({.kind = Kind::clientConfigDel, .client = client});
        add({.kind = Kind::clientStatusDel, .client = client});
    }

    void comeBack(unsigned client) {
        add({.kind = Kind::clientConfig, .client = client, .a = 3});
        add({.kind = Kind::clientStatus, .client = client, .a = 3});
    }

    void restart() {
        add({.kind = Kind::stop});
        for (auto count = random_.below(3); count > 0; --count) {
            add({.kind = Kind::requestDel, .client = someone(), .req = someReq()});
            add({.kind = Kind::turn, .a = 1, .flag = random_.chance(50)});
            add({.kind = Kind::result, .client = someone(), .req = someReq()});
        }
        if (random_.chance(20)) {
            client();
        }
        if (mood_.reckless && mood_.calls && random_.chance(30)) {
            fail(4);
        }
        add({.kind = Kind::start, .flag = !random_.chance(12)});
    }

    void fail(std::uint64_t call) {
        add({.kind = Kind::callFails,
             .a = call,
             .b = call == 4 ? 1 : nth(),
             .c = times(),
             .value = random_.chance(50) ? 13 : -2});
    }

    void faults() {
        auto const dice = random_.below(100);
        if (dice < 25 && mood_.calls) {
            static std::vector<std::uint64_t> const calls{0, 0, 1, 1, 2, 3, 5, 6};
            fail(random_.pick(calls));
        } else if (dice < 55 && mood_.phase0) {
            phase0();
        } else if (dice < 70 && mood_.counters) {
            counters();
        } else if (dice < 85 && mood_.digests) {
            if (random_.chance(30)) {
                add({.kind = Kind::releaseHeld});
            }
            add({.kind = Kind::digestFate,
                 .a = random_.between(1, 3),
                 .b = nth(),
                 .c = random_.between(1, 3),
                 .value = static_cast<std::int32_t>(random_.below(3))});
        } else if (dice < 95 && mood_.socket) {
            static std::vector<std::uint64_t> const rooms{0, 5, 10, 12, 19, 25, 40, 200, 24000};
            add({.kind = Kind::room, .a = random_.pick(rooms)});
        } else if (dice >= 97) {
            add({.kind = Kind::faultsEnd});
        }
    }

    void phase0() {
        switch (random_.below(5)) {
            case 0:
                return add({.kind = Kind::phase0Late,
                            .a = random_.between(1, 6),
                            .b = nth(),
                            .c = times()});
            case 1:
                return add({.kind = Kind::phase0Lost, .b = nth(), .c = 1});
            case 2:
                return add({.kind = Kind::phase0Status, .a = 7, .b = nth(), .c = times()});
            case 3:
                return add({.kind = Kind::phase0Drop, .intf = random_.pick(ingress_)});
            default:
                return add({.kind = Kind::phase0Ask, .intf = random_.pick(ingress_)});
        }
    }

    void counters() {
        if (random_.chance(60)) {
            bool const on = random_.chance(50);
            for (std::uint64_t pipe = 0; pipe < 4; ++pipe) {
                add({.kind = Kind::stall, .a = pipe, .flag = on});
            }
            return;
        }
        static std::vector<std::uint64_t> const counts{0, 1, 2, ~std::uint64_t{0}};
        add({.kind = Kind::counter, .a = random_.below(4), .b = random_.pick(counts)});
    }

    void forwarding() {
        IntfId const intf = random_.pick(any_);
        auto const vlan = 10 * random_.between(1, 4);
        if (random_.chance(40)) {
            return add(random_.pick(told_));
        }
        switch (random_.below(12)) {
            case 0:
                // Another place for a port would change the packet's job; only the reckless do.
                return add({.kind = mood_.reckless ? Kind::port : Kind::portDel,
                            .intf = random_.pick(ingress_),
                            .a = random_.below(4),
                            .b = random_.chance(10) ? 456 : random_.below(128)});
            case 1:
                return add({.kind = Kind::portToIntfIdDel, .a = random_.pick(ports_)});
            case 2:
                return add({.kind = Kind::portToIntfId, .intf = intf, .a = random_.pick(ports_)});
            case 3:
                return add(
                    {.kind = Kind::lagToPort, .intf = random_.chance(70) ? named("Lag1") : intf});
            case 4:
                return add({.kind = Kind::lagToPortDel, .intf = named("Lag1")});
            case 5:
                return add({.kind = Kind::portToLag, .intf = intf, .lag = named("Lag2")});
            case 6:
                return add({.kind = Kind::portToLagDel, .intf = named("Ethernet5")});
            case 7: {
                Event event{.kind = Kind::vlan, .a = vlan, .flag = random_.chance(50)};
                // Of nobody, of the CPU alone, of some.
                unsigned const each = random_.chance(25) ? 0 : 35;
                for (auto const& member : any_) {
                    if (random_.chance(member == named("Cpu") ? 50 : each)) {
                        event.intfs.push_back(member);
                    }
                }
                return add(std::move(event));
            }
            case 8:
                return add({.kind = Kind::vlanDel, .a = vlan});
            case 9:
                return add({.kind = Kind::cpuPort, .intf = intf});
            case 10:
                return add({.kind = Kind::cpuPortDel, .intf = named("Ethernet8")});
            default:
                return add({.kind = Kind::chipPortUp,
                            .a = random_.pick(ports_),
                            .flag = random_.chance(60)});
        }
    }

    void forge() {
        Event event{.kind = Kind::forge};
        auto const dice = random_.below(100);
        std::size_t const count = dice < 70   ? random_.between(1, 4)
                                  : dice < 80 ? 0
                                  : dice < 90 ? random_.between(450, 460)
                                              : random_.between(5, 40);
        for (std::size_t i = 0; i < count; ++i) {
            event.entries.push_back(drawEntry());
        }
        add(std::move(event));
    }

    Forged drawEntry() {
        static std::vector<std::uint16_t> const domains{10, 20, 30, 40, 0, 4094};
        Forged entry;
        entry.back = static_cast<std::uint16_t>(random_.chance(15) ? 65000 : random_.below(6));
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

// A job is answered; the next one the chip refuses until the packet ids have wrapped, and then it may
// have the packet id of the first one's answer, which its digest completes once more.
void drawLongLife(Random& random, std::vector<Event>& events) {
    constexpr std::uint64_t refused = 65535;
    auto const request = [&](std::uint32_t req) {
        events.push_back({.kind = Kind::request,
                          .req = req,
                          .intf = named("Ethernet1"),
                          .a = 0x800,
                          .flag = true,
                          .raw = drawFrame(random, 0, req)});
    };
    events.push_back({.kind = Kind::clientConfig});
    events.push_back({.kind = Kind::clientStatus});
    events.push_back({.kind = Kind::start, .flag = true});
    request(1);
    events.push_back({.kind = Kind::turn, .a = 6, .flag = true});
    events.push_back({.kind = Kind::callFails,
                      .a = 1,
                      .b = 1,
                      .c = random.chance(50) ? refused : random.between(refused - 2, refused + 2),
                      .value = 1});
    request(2);
    events.push_back({.kind = Kind::turn, .a = 3 * refused});
    events.push_back({.kind = Kind::turn, .a = 12, .flag = true});
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
