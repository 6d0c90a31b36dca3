// The chip's answers during one event, as the events that stand before it in a scenario, so that
// the scripted chip gives the same answers. Thread: one at a time.
#pragma once

#include <map>
#include <vector>

#include "scenario/Event.h"

namespace Scenario {

class ChipAnswers {
  public:
    // A call was answered; a counter was read, too.
    void called(SdkSeam::SdkFunction function, std::int32_t rc);
    void counterRead(std::uint32_t pipe, std::uint64_t count);

    // Every value that a pipe's counter gave.
    std::vector<Do::Counter> counters() const;

    // One instruction for each function, in the order of their first calls: how many calls succeed,
    // and how many then fail with the same status.
    struct Failures {
        Do::SdkReturn told;
        bool isAll;  // no later call failed in another way
    };
    std::vector<Failures> failures() const;

  private:
    struct Calls {
        SdkSeam::SdkFunction function;
        std::vector<std::int32_t> results;
    };

    std::vector<Calls> calls_;
    std::map<std::uint8_t, std::vector<std::uint64_t>> counts_;  // by pipe
};

}  // namespace Scenario
