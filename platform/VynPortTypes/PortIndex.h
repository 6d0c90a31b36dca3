// A port's index: 0..455, or 456 for "no single port".
#pragma once

#include <compare>
#include <cstdint>

#include "Kel/Reflection.h"
#include "VynExport.h"

namespace VynPortTypes {

class VYN_EXPORT PortIndex {
  public:
    static constexpr std::uint16_t min = 0;
    static constexpr std::uint16_t invalid = 456;

    constexpr PortIndex() noexcept = default;
    // Errors: Kel::RangeError above `invalid`.
    explicit PortIndex(std::uint16_t value);

    constexpr std::uint16_t value() const noexcept { return value_; }

    friend constexpr auto operator<=>(PortIndex const&, PortIndex const&) noexcept = default;

  private:
    std::uint16_t value_ = invalid;
};

inline void reflectValue(Kel::AttributeSink& sink, PortIndex index) {
    sink.number(std::uint64_t{index.value()});
}

}  // namespace VynPortTypes

template <>
struct std::hash<VynPortTypes::PortIndex> {
    std::size_t operator()(VynPortTypes::PortIndex index) const noexcept { return index.value(); }
};
