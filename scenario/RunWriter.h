// Puts the events of a live run into the order of a scenario.
//
// In a scenario everything that an event will meet stands before it: the counters that it will
// read, the calls that will fail, the digests that its turn will take. So an event is written when
// the next one begins, and what it met is written before it. A turn is one event:
//
//   live                                         scenario
//   posted calls and what else comes from        events ahead of the turn, in their order
//   outside, up to the first of the two below
//   the digest's descriptor is announced         the digest that is read, just ahead of the turn
//   the engine's task runs                       the turn
//   what comes from outside behind these         events behind the turn
//
// A scenario cannot express what comes between the two in the same turn if the task was to run
// anyway; it is then written before a second turn, with a comment. Turns in which neither of the
// two happened are left out. Turns that meet nothing are counted together.
//
// A digest's acknowledgement may come after the turn that read the digest. Lines behind such a
// digest wait in memory until the acknowledgement is known, so no thread ever waits for another
// one.
//
// Threads: received(), acknowledged() and done() any; everything else the event thread. Calls do
// not overlap; the caller sees to it.
#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <limits>
#include <list>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "scenario/ChipAnswers.h"
#include "scenario/Event.h"
#include "scenario/RecordingFile.h"

namespace Scenario {

class RunWriter {
  public:
    using TurnNumber = std::uint64_t;

    static constexpr std::uint64_t defaultMostTurns = 1'000'000;

    // `file` outlives the writer. One event takes `mostTurns` turns at most.
    explicit RunWriter(RecordingFile& file, std::uint64_t mostTurns = defaultMostTurns)
        : file_(file), mostTurns_(mostTurns) {}

    // An event from outside begins. The release of the tracer discards the digests that were not
    // read.
    void event(Event event);
    // A remark for people, after the event that has begun.
    void remark(std::string_view text);

    // In a turn of the loop: the digest's descriptor is announced; the engine's task runs and will
    // be asked to yield after so many checks.
    void digestAnnounced(TurnNumber turn);
    void taskRuns(TurnNumber turn, std::uint32_t yieldAfter);

    // The event under way meets this.
    void called(SdkSeam::SdkFunction call, std::int32_t rc);
    void counterRead(std::uint32_t pipe, std::uint64_t count);

    // A learn message: received with these entries; acknowledged; the callback has returned.
    using Reception = std::uint64_t;
    Reception received(std::span<std::uint8_t const> entries);
    void acknowledged(std::int32_t rc);
    void done(Reception reception);

    // Writes everything that is known by now: the event that has begun as far as it got, and after
    // it the digests that were received and not read.
    void finish();

  private:
    struct Message {
        Reception number = 0;
        std::string line;
        std::int32_t rc = 0;  // of its acknowledgement
        bool done = false;
    };
    using Messages = std::list<Message>;
    struct Under {  // the event under way
        Under();    // defined where the class is complete, which std::optional asks for

        std::optional<Event> event;  // none for a turn
        TurnNumber turn = 0;
        bool taskRan = false;
        std::vector<std::string> ahead;
        Messages messages;  // to be taken in it
        ChipAnswers answers;
        std::vector<std::string> remarks;
    };
    // A line, or a message that becomes one or two when it is done.
    struct Item {
        std::string lines;
        Messages message;
    };

    Under& turnUnder(TurnNumber turn);
    void close();
    void addAnswers(Under& under);
    void add(std::string const& line);
    void addMessages(Messages&& messages);
    void addTurns();
    void write(bool all);

    RecordingFile& file_;
    std::uint64_t const mostTurns_;
    std::optional<Under> under_;
    std::uint64_t turns_ = 0;  // that meet nothing, not written yet
    std::optional<TurnNumber> closedTurn_;
    Messages unread_;  // received and not read, in their order
    Reception receptions_ = 0;
    std::deque<Item> items_;                           // not written yet
    std::map<std::uint32_t, std::uint64_t> counters_;  // what a scenario's chip would give by now
    std::uint32_t yieldAfter_ = std::numeric_limits<std::uint32_t>::max();
};

}  // namespace Scenario
