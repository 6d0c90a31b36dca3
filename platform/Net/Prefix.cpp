#include "Net/Prefix.h"

#include "Net/Number.h"

namespace Net {

std::optional<Prefix> Prefix::fromText(std::string_view text) {
    auto const slash = text.find('/');
    auto const address = IpAddress::fromText(text.substr(0, slash));
    if (!address) {
        return std::nullopt;
    }
    unsigned const bits = addressBits(address->family);
    if (slash == std::string_view::npos) {
        return of(*address, bits);
    }
    auto const length = numberOfDigits(text.substr(slash + 1), bits);
    bool const isPrefix = length && address->masked(*length) == *address;
    return isPrefix ? std::optional(of(*address, *length)) : std::nullopt;
}

std::string Prefix::text() const {
    return address.text() + "/" + std::to_string(length);
}

}  // namespace Net
