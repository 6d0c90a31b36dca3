#include "scenario/ChipAnswers.h"

#include <algorithm>

namespace Scenario {

void ChipAnswers::called(SdkSeam::SdkFunction function, std::int32_t rc) {
    auto found = std::ranges::find(calls_, function, &Calls::function);
    if (found == calls_.end()) {
        found = calls_.insert(found, {function, {}});
    }
    found->results.push_back(rc);
}

void ChipAnswers::counterRead(std::uint32_t pipe, std::uint64_t count) {
    counts_[static_cast<std::uint8_t>(pipe)].push_back(count);
}

std::vector<Do::Counter> ChipAnswers::counters() const {
    std::vector<Do::Counter> counters;
    for (auto const& [pipe, values] : counts_) {
        counters.push_back({pipe, values});
    }
    return counters;
}

std::vector<ChipAnswers::Failures> ChipAnswers::failures() const {
    std::vector<Failures> all;
    auto const isFailure = [](std::int32_t rc) { return rc != 0; };
    for (auto const& [function, results] : calls_) {
        auto const first = std::ranges::find_if(results, isFailure);
        if (first == results.end()) {
            continue;
        }
        auto const last =
            std::find_if(first, results.end(), [&](std::int32_t rc) { return rc != *first; });
        all.push_back({{.call = function,
                        .rc = *first,
                        .times = static_cast<std::uint32_t>(last - first),
                        .after = static_cast<std::uint32_t>(first - results.begin())},
                       std::none_of(last, results.end(), isFailure)});
    }
    return all;
}

}  // namespace Scenario
