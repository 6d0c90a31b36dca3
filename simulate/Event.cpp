#include "simulate/Event.h"

#include <array>
#include <string_view>

#include "scenario/LineWriter.h"
#include "scenario/Writer.h"

namespace Simulate {
namespace {

// By the event's index in the variant.
constexpr std::array<std::string_view, std::variant_size_v<Event>> names{
    "",           "configReturns", "statusReturns", "requestDelAll", "turns",        "chipStep",
    "chipPortUp", "callFails",     "phase0Late",    "phase0Lost",    "phase0Status", "phase0Ask",
    "phase0Drop", "stall",         "counterStarts", "digestsSuffer", "releaseHeld",  "forge",
    "room",       "faultsEnd"};

// The members of an event's line; most have none. One operator an event.
struct Members {
    Scenario::LineWriter& line;

    void window(Window const& window) const {
        line.must("nth", window.nth);
        line.must("times", window.times);
    }

    template <class AnyOther>
    void operator()(AnyOther const&) const {}
    void operator()(ConfigReturns const& e) const { line.must("client", e.client); }
    void operator()(StatusReturns const& e) const { line.must("client", e.client); }
    void operator()(RequestDelAll const& e) const { line.must("client", e.client); }
    void operator()(Turns const& e) const {
        line.must("times", e.times);
        line.must("chipWorks", e.chipWorks);
    }
    void operator()(ChipPortUp const& e) const {
        line.must("devicePort", e.devicePort);
        line.must("up", e.up);
    }
    void operator()(CallFails const& e) const {
        line.must("call", Vanta::String(sdkFunctionName(e.call)));
        window(e.window);
        line.must("rc", e.rc);
    }
    void operator()(Phase0Late const& e) const {
        line.must("turns", e.turns);
        window(e.window);
    }
    void operator()(Phase0Lost const& e) const { window(e.window); }
    void operator()(Phase0Status const& e) const {
        line.must("status", e.status);
        window(e.window);
    }
    void operator()(Phase0Ask const& e) const { line.must("intf", e.intf); }
    void operator()(Phase0Drop const& e) const { line.must("intf", e.intf); }
    void operator()(Stall const& e) const {
        line.must("pipe", e.pipe);
        line.must("stalled", e.stalled);
    }
    void operator()(CounterStarts const& e) const {
        line.must("pipe", e.pipe);
        line.must("count", e.count);
    }
    void operator()(DigestsSuffer const& e) const {
        static constexpr std::array<std::string_view, 4> fates{"sent", "lost", "doubled", "held"};
        line.mustWord("fate", e.fate, fates);
        window(e.window);
        line.must("behind", e.behind);
    }
    void operator()(Forge const& e) const { line.must("entries", e.entries.size()); }
    void operator()(Room const& e) const { line.must("bytes", e.bytes); }
};

}  // namespace

std::string clientName(unsigned client) {
    return std::string(1, static_cast<char>('A' + client));
}

PacketTracer::RequestId requestId(unsigned client, std::uint32_t req) {
    return {clientName(client), req};
}

std::string text(Event const& event) {
    if (auto const* const known = std::get_if<Scenario::Event>(&event)) {
        return Scenario::line(*known);
    }
    Scenario::LineWriter line;
    line.must("do", Vanta::String(names[event.index()]));
    std::visit(Members{line}, event);
    return line.text();
}

}  // namespace Simulate
