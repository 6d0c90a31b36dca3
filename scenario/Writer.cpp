#include "scenario/Writer.h"

#include "scenario/EventMembers.h"
#include "scenario/LineWriter.h"

namespace Scenario {

std::string line(Event const& event) {
    LineWriter line;
    line.must("do", eventNames[event.index()]);
    // A copy, because the walk is also the reader's, which changes the event that it is given.
    std::visit([&line](auto copy) { members(line, copy); }, event);
    return line.text();
}

}  // namespace Scenario
