#include "Net/MacAddress.h"

#include <cstdio>

#include "Net/Number.h"

namespace Net {

std::optional<MacAddress> MacAddress::fromText(std::string_view text) noexcept {
    auto const first = text.find_first_of(":-");
    if (first == std::string_view::npos) {
        return std::nullopt;
    }
    char const separator = text[first];
    MacAddress address;
    for (int group = 0; group < 6; ++group) {
        auto const end = group == 5 ? text.size() : text.find(separator);
        auto const octet = end > 2 ? std::nullopt : numberOfDigits(text.substr(0, end), 0xff, 16);
        if (!octet) {
            return std::nullopt;
        }
        address.value = address.value << 8 | *octet;
        text.remove_prefix(group == 5 ? end : end + 1);
    }
    return address;
}

std::string MacAddress::text() const {
    std::array<char, 18> buffer{};
    Octets const o = octets();
    std::snprintf(buffer.data(), buffer.size(), "%02x:%02x:%02x:%02x:%02x:%02x", unsigned{o[0]},
                  unsigned{o[1]}, unsigned{o[2]}, unsigned{o[3]}, unsigned{o[4]}, unsigned{o[5]});
    return buffer.data();
}

}  // namespace Net
