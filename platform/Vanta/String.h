// An immutable text that is cheap to share: copies count a reference and hash in constant time.
#pragma once

#include <compare>
#include <functional>
#include <ostream>
#include <string>
#include <string_view>

#include "Vanta/SharedBytes.h"

namespace Vanta {

class String {
  public:
    String() noexcept = default;
    // A copy of `text`. Errors: std::bad_alloc.
    String(std::string_view text) : bytes_(text.data(), text.size()) {}
    String(char const* text) : String(std::string_view(text)) {}
    String(std::string const& text) : String(std::string_view(text)) {}

    std::string_view view() const noexcept {
        return {reinterpret_cast<char const*>(bytes_.data()), bytes_.size()};
    }
    std::size_t size() const noexcept { return bytes_.size(); }
    bool empty() const noexcept { return bytes_.size() == 0; }
    std::uint64_t hash() const noexcept { return bytes_.hash(); }

    friend bool operator==(String const&, String const&) noexcept = default;
    friend bool operator==(String const& a, std::string_view b) noexcept { return a.view() == b; }
    friend bool operator==(String const& a, char const* b) noexcept { return a.view() == b; }
    friend std::strong_ordering operator<=>(String const& a, String const& b) noexcept {
        return a.view() <=> b.view();
    }
    friend std::ostream& operator<<(std::ostream& out, String const& s) { return out << s.view(); }

  private:
    SharedBytes bytes_;
};

}  // namespace Vanta

template <>
struct std::hash<Vanta::String> {
    std::size_t operator()(Vanta::String const& s) const noexcept { return s.hash(); }
};
