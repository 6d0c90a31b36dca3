// VLAN tags (IEEE 802.1Q). Plain values that belong to no thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "Net/EtherType.h"
#include "VynExport.h"

namespace Net {

// The largest number of a VLAN; the one above it is reserved.
inline constexpr std::uint16_t maxVlan = 4094;

struct VYN_EXPORT VlanTag {
    std::uint16_t tpid = EtherType::vlan;
    std::uint16_t vlan = 0;     // 0 to 4095: 0 is a priority tag, 4095 is reserved
    std::uint8_t priority = 0;  // 0 to 7
    bool dropEligible = false;

    // The tag from its two words in a frame: the tag protocol identifier and the control
    // information.
    static constexpr VlanTag fromWords(std::uint16_t tpid, std::uint16_t control) noexcept {
        return {tpid, static_cast<std::uint16_t>(control & 0xfff),
                static_cast<std::uint8_t>(control >> 13), (control & 0x1000) != 0};
    }
    constexpr std::uint16_t control() const noexcept {
        return static_cast<std::uint16_t>(priority << 13 | (dropEligible ? 0x1000 : 0) | vlan);
    }

    // As people write one: "20", "20,priority=5,tpid=0x88a8,dei". Numbers are decimal or, after
    // "0x", hexadecimal, the VLAN at most maxVlan; nothing for any other text.
    static std::optional<VlanTag> fromText(std::string_view text) noexcept;
    // The whole tag, with nothing left out: "20 tpid 0x88a8 priority 5 drop-eligible".
    std::string text() const;

    friend constexpr bool operator==(VlanTag const&, VlanTag const&) noexcept = default;
};

}  // namespace Net
