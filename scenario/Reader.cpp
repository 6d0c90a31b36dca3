#include "scenario/Reader.h"

#include "scenario/EventMembers.h"
#include "scenario/JsonText.h"
#include "scenario/Members.h"

namespace Scenario {
namespace {

template <std::size_t Index = 0>
Event readNamed(std::string_view name, Members& line) {
    if constexpr (Index == eventNames.size()) {
        throw Refusal("there is no event " + jsonText(name));
    } else if (name != eventNames[Index]) {
        return readNamed<Index + 1>(name, line);
    } else {
        std::variant_alternative_t<Index, Event> event{};
        members(line, event);
        return event;
    }
}

}  // namespace

Event readEvent(std::string_view line) {
    LineValue::Members const parsed = parseJsonLine(line);
    Members members(parsed);
    Vanta::String name;
    members.must("do", name);
    Event event = readNamed(name.view(), members);
    members.end();
    return event;
}

}  // namespace Scenario
