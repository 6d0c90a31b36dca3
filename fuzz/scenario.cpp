// A scenario. Its lines are read, and if none is refused they are played, unless the scenario may
// end the process that it runs in. That is judged from the lines alone, so some scenarios that
// would not end it are left out, too; tests that fork cover ends of the process.
#include <map>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "Target.h"
#include "replay/Replay.h"
#include "scenario/Reader.h"

namespace {

namespace Do = Scenario::Do;

// The events of a whole input; none if a line is refused, which also ends the reading.
std::optional<std::vector<Scenario::Event>> readAll(std::string const& text) {
    std::istringstream in(text);
    std::vector<Scenario::Event> events;
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line.front() == '#') {
            continue;
        }
        try {
            events.push_back(Scenario::readEvent(line));
        } catch (Scenario::Refusal const& refusal) {
            Fuzz::check(*refusal.what() != '\0', "a refusal has a reason");
            return std::nullopt;
        }
    }
    return events;
}

// Whether a series of events is harmless, asked one event after the other: none at which the tracer
// ends the process, and not too many turns.
class Harmless {
  public:
    template <class AnyOther>
    bool operator()(AnyOther const&) {
        return true;
    }

    // Harmful: replacing a client's objects while it runs, and turning a job into another one.
    bool operator()(Do::ClientConfig const& e) { return isFirst(configs_, e); }
    bool operator()(Do::ClientStatus const& e) { return isFirst(statuses_, e); }
    bool operator()(Do::Request const& e) { return requests_.insert(e.id).second; }
    bool operator()(Do::RequestSet const& e) {
        return e.attribute != Do::RequestAttribute::intf &&
               e.attribute != Do::RequestAttribute::raw;
    }
    bool operator()(Do::Port const& e) {
        std::pair const portInfo(e.pipe, e.port);
        return ports_.emplace(e.intf, portInfo).first->second == portInfo;
    }

    // Harmful: digests with impossible values, or that leave the stream out of step.
    bool operator()(Do::Digest const& e) {
        constexpr std::size_t most = SdkSeam::maxMessageEntries;
        bool good = e.entries.size() <= most;
        for (auto const& entry : e.entries) {
            bool const floods = entry.egrPort == 456 || entry.egrPort == 511;
            bool const hasDomain = entry.l2Domain >= 1 && entry.l2Domain <= 4094;
            good = good && (floods || entry.egrPort < 456) &&
                   (hasDomain || (!floods && entry.routed == 0));
        }
        return good;
    }
    bool operator()(Do::DigestField const&) { return false; }
    bool operator()(Do::SdkReturn const& e) {
        return e.call != SdkSeam::SdkFunction::digestRegister;
    }

    bool operator()(Do::Turn const& e) {
        constexpr std::uint64_t most = 30;
        turns_ += e.times;
        return turns_ <= most;
    }

  private:
    using Names = std::set<std::string, std::less<>>;

    template <class Put>
    static bool isFirst(Names& names, Put const& put) {
        return put.entity != Do::Entity::own || names.emplace(put.client.view()).second;
    }

    Names configs_;
    Names statuses_;
    std::set<PacketTracer::RequestId> requests_;
    std::map<Plexa::IntfId, std::pair<std::uint8_t, std::uint16_t>> ports_;
    std::uint64_t turns_ = 0;
};

bool isHarmless(std::vector<Scenario::Event> const& events) {
    Harmless harmless;
    for (auto const& event : events) {
        if (!std::visit(harmless, event)) {
            return false;
        }
    }
    return true;
}

void play(std::string const& text) {
    std::istringstream in(text);
    std::ostringstream out;
    std::ostringstream err;
    int const status = Replay::run(in, out, err, {"input", true});
    Fuzz::check(status == Replay::allRun || status == Replay::badInput,
                "a scenario ends with a described status");
    Fuzz::check((status == Replay::badInput) == !err.str().empty(), "bad input has its line");
}

}  // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    std::string const text(Fuzz::textOf(data, size));
    auto const events = readAll(text);
    if (events && isHarmless(*events)) {
        play(text);
    }
    return 0;
}
