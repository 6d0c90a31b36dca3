// An immutable run of bytes (a packet, phase-0 data) that is cheap to share.
#pragma once

#include <initializer_list>
#include <span>
#include <string>
#include <vector>

#include "Vanta/SharedBytes.h"

namespace Vanta {

class Bytes {
  public:
    Bytes() noexcept = default;
    // A copy of `bytes`. Errors: std::bad_alloc.
    Bytes(std::span<std::uint8_t const> bytes) : bytes_(bytes.data(), bytes.size()) {}
    Bytes(std::vector<std::uint8_t> const& bytes) : bytes_(bytes.data(), bytes.size()) {}
    Bytes(std::initializer_list<std::uint8_t> bytes) : bytes_(bytes.begin(), bytes.size()) {}

    std::span<std::uint8_t const> view() const noexcept { return {bytes_.data(), bytes_.size()}; }
    std::uint8_t const* data() const noexcept { return bytes_.data(); }
    std::size_t size() const noexcept { return bytes_.size(); }
    bool empty() const noexcept { return bytes_.size() == 0; }

    // Byte by byte; constant time when both share one block.
    friend bool operator==(Bytes const&, Bytes const&) noexcept = default;

  private:
    SharedBytes bytes_;
};

// Lower-case hexadecimal digits, two a byte.
VYN_EXPORT std::string hexText(std::span<std::uint8_t const> bytes);

}  // namespace Vanta
