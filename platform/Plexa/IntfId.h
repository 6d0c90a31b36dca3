// Interface ids: small values that name the interfaces of a switch.
//
// Names, without leading zeros:
//     Ethernet<n>[/<n>[/<n>]]      physical port, 0..65535 each
//     Lag<n>                       LAG, 1..65535
//     <physical or LAG>.<n>        sub-interface, 1..65535
//     Vlan<n>                      VLAN interface, 1..4094
//     Cpu                          the CPU
//
// Order: the empty id, physical ports, LAGs, sub-interfaces (by parent, then number), VLAN
// interfaces, Cpu; within a kind numbers count by value (Ethernet1, Ethernet1/2, Ethernet1/10,
// Ethernet2). Ids compare, copy and hash in constant time and belong to no thread.
#pragma once

#include <compare>
#include <cstdint>
#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include "VynExport.h"

namespace Plexa {

class VYN_EXPORT IntfId {
  public:
    // The kinds, in their order.
    enum class Kind : std::uint8_t { none, physical, lag, subIntf, vlan, cpu };

    // The longest name, "Ethernet65535/65535/65535.65535".
    static constexpr std::size_t maxNameSize = 32;

    // The empty id: no interface. Its name is the empty text.
    constexpr IntfId() noexcept = default;

    // The id of a name; nothing for a text that is no name. The empty text is the empty id.
    static std::optional<IntfId> fromName(std::string_view name) noexcept;

    // Sets this id from a name and returns true; for any other text returns false and changes
    // nothing.
    bool nameIs(std::string_view name) noexcept;

    constexpr Kind kind() const noexcept { return static_cast<Kind>(high_ >> kindShift); }
    constexpr bool empty() const noexcept { return high_ == 0; }

    // The name.
    std::string stringValue() const;

    // Writes the name to `buffer`, which holds at least maxNameSize characters; returns its size.
    std::size_t nameTo(char* buffer) const noexcept;

    friend constexpr bool operator==(IntfId const&, IntfId const&) noexcept = default;
    friend constexpr std::strong_ordering operator<=>(IntfId const&,
                                                      IntfId const&) noexcept = default;

    constexpr std::uint64_t hash() const noexcept {
        std::uint64_t const mixed = (high_ ^ (low_ << 17)) * 0x9e3779b97f4a7c15ULL;
        return mixed ^ (mixed >> 29);
    }

  private:
    friend class SubIntfId;
    friend class VlanIntfId;
    friend class CpuIntfId;

    // high_: kind (4 bits), kind of a sub-interface's parent (4 bits), then 50 bits of numbers:
    // for a physical port three of 16, 17 and 17 bits, the later two plus one, 0 if absent.
    // low_: the number of a sub-interface.
    static constexpr unsigned kindShift = 60;
    static constexpr unsigned parentKindShift = 56;
    static constexpr std::uint64_t numberMask = (std::uint64_t{1} << 50) - 1;

    constexpr IntfId(Kind kind, std::uint64_t numbers) noexcept
        : high_(static_cast<std::uint64_t>(kind) << kindShift | numbers) {}

    static std::optional<IntfId> parentFromName(std::string_view name) noexcept;

    std::uint64_t high_ = 0;
    std::uint64_t low_ = 0;
};

inline std::ostream& operator<<(std::ostream& out, IntfId const& id) {
    return out << id.stringValue();
}

// Sub-interfaces: a physical port or LAG and a number.
class VYN_EXPORT SubIntfId {
  public:
    static constexpr bool isSubIntfId(IntfId const& id) noexcept {
        return id.kind() == IntfId::Kind::subIntf;
    }
    // The port or LAG that the sub-interface is on; the empty id for any other id.
    static IntfId parentIntfId(IntfId const& id) noexcept;
    // The sub-interface `number` (1..65535) of a physical port or LAG; otherwise the empty id.
    static IntfId subIntfId(IntfId const& parent, unsigned number) noexcept;
    // The number of a sub-interface; 0 for any other id.
    static unsigned number(IntfId const& id) noexcept;
};

// VLAN interfaces.
class VYN_EXPORT VlanIntfId {
  public:
    static constexpr bool isVlanIntfId(IntfId const& id) noexcept {
        return id.kind() == IntfId::Kind::vlan;
    }
    // The interface of a VLAN, 1..4094; the empty id for any other number.
    static IntfId vlanIdToIntfId(std::uint16_t vlanId) noexcept;
    // The VLAN of a VLAN interface; 0 for any other id.
    static std::uint16_t vlanId(IntfId const& id) noexcept;
};

// The CPU's interface.
class VYN_EXPORT CpuIntfId {
  public:
    // Holds for the interface named "Cpu" alone.
    static constexpr bool isCpuIntfId(IntfId const& id) noexcept {
        return id.kind() == IntfId::Kind::cpu;
    }
};

}  // namespace Plexa

template <>
struct std::hash<Plexa::IntfId> {
    std::size_t operator()(Plexa::IntfId const& id) const noexcept { return id.hash(); }
};
