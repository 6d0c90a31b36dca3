#include "cli/Expectation.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "cli/UsageError.h"

namespace Cli {

Expectation Expectation::parse(std::string_view text) {
    Expectation expectation;
    while (!text.empty()) {
        auto const comma = std::min(text.find(','), text.size());
        std::string_view const name = text.substr(0, comma);
        auto const intf = Plexa::IntfId::fromName(name);
        bool const endsInComma = comma + 1 == text.size();
        if (!intf || intf->empty() || endsInComma) {
            throw UsageError("--expect: expected interface names joined by commas, got \"" +
                             std::string(endsInComma ? std::string_view() : name) + "\"");
        }
        expectation.expected_.insert(*intf);
        text.remove_prefix(std::min(comma + 1, text.size()));
    }
    return expectation;
}

Difference Expectation::differenceTo(std::vector<PacketTracer::ResultEntry> const& egress) const {
    std::set<Plexa::IntfId> found;
    for (auto const& entry : egress) {
        if (!entry.physicalIntf().empty()) {
            found.insert(entry.physicalIntf());
        }
    }
    Difference difference;
    std::ranges::set_difference(expected_, found, std::back_inserter(difference.missing));
    std::ranges::set_difference(found, expected_, std::back_inserter(difference.unexpected));
    return difference;
}

}  // namespace Cli
