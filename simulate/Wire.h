// What the chip and the system tell the tracer during one step, in order: the model's only
// knowledge of them. The logbook fills it while the step runs, the model empties it afterwards.
#pragma once

#include <cstdint>
#include <deque>

#include "Plexa/IntfId.h"
#include "simulate/Event.h"

namespace Simulate {

struct Wire {
    // What an SDK function returned, and the counter that it reported. The function and the pipe
    // are for the transcript; the model knows them by itself.
    struct Answer {
        std::int32_t rc = 0;
        std::uint64_t count = 0;
        SdkSeam::SdkFunction function{};
        std::uint32_t pipe = 0;
    };
    // A change of the phase-0 response entry of an interface.
    struct Announcement {
        Plexa::IntfId intf;
        bool present = false;
        std::uint32_t status = 0;
        Bytes data;
    };
    // A learn message: its first eight bytes, and its entries.
    struct Message {
        std::uint16_t entries = 0;
        Bytes bytes;
    };

    std::deque<Answer> answers;
    std::deque<Announcement> announcements;
    std::deque<Message> messages;

    bool empty() const { return answers.empty() && announcements.empty() && messages.empty(); }
};

}  // namespace Simulate
