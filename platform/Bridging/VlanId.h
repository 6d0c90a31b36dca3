// A VLAN's number, 1..4094.
#pragma once

#include <compare>
#include <cstdint>

#include "Kel/Reflection.h"
#include "VynExport.h"

namespace Bridging {

class VYN_EXPORT VlanId {
  public:
    static constexpr std::uint16_t min = 1;
    static constexpr std::uint16_t max = 4094;

    // Errors: Kel::RangeError for any other value.
    explicit VlanId(std::uint16_t value);

    std::uint16_t value() const noexcept { return value_; }

    friend auto operator<=>(VlanId const&, VlanId const&) noexcept = default;

  private:
    std::uint16_t value_;
};

inline void reflectValue(Kel::AttributeSink& sink, VlanId vlan) {
    sink.number(std::uint64_t{vlan.value()});
}

}  // namespace Bridging

template <>
struct std::hash<Bridging::VlanId> {
    std::size_t operator()(Bridging::VlanId vlan) const noexcept { return vlan.value(); }
};
