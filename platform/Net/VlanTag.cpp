#include "Net/VlanTag.h"

#include "Net/Number.h"

namespace Net {
namespace {

std::string_view firstPart(std::string_view text) noexcept {
    return text.substr(0, text.find(','));
}

template <class Member>
bool set(Member& member, std::string_view text, std::uint32_t most) noexcept {
    auto const number = numberFromText(text, most);
    member = static_cast<Member>(number.value_or(0));
    return number.has_value();
}

bool setPart(VlanTag& tag, std::string_view part) noexcept {
    auto const valueOf = [part](std::string_view name) { return part.substr(name.size()); };
    if (constexpr std::string_view name = "priority="; part.starts_with(name)) {
        return set(tag.priority, valueOf(name), 7);
    }
    if (constexpr std::string_view name = "tpid="; part.starts_with(name)) {
        return set(tag.tpid, valueOf(name), 0xffff);
    }
    tag.dropEligible = part == "dei";
    return tag.dropEligible;
}

}  // namespace

std::optional<VlanTag> VlanTag::fromText(std::string_view text) noexcept {
    VlanTag tag;
    if (!set(tag.vlan, firstPart(text), maxVlan)) {
        return std::nullopt;
    }
    while (text.find(',') != std::string_view::npos) {
        text.remove_prefix(text.find(',') + 1);
        if (!setPart(tag, firstPart(text))) {
            return std::nullopt;
        }
    }
    return tag;
}

std::string VlanTag::text() const {
    return std::to_string(vlan) + " tpid " + EtherType::text(tpid) + " priority " +
           std::to_string(priority) + (dropEligible ? " drop-eligible" : "");
}

}  // namespace Net
