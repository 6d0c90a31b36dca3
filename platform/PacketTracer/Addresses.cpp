#include "PacketTracer/Addresses.h"

#include <arpa/inet.h>

#include <charconv>

#include "Vanta/Bytes.h"

namespace PacketTracer {
namespace {

std::optional<std::uint8_t> octet(std::string_view digits) {
    std::uint8_t value = 0;
    auto const* const end = digits.data() + digits.size();
    auto const [stopped, error] = std::from_chars(digits.data(), end, value, 16);
    if (digits.empty() || digits.size() > 2 || error != std::errc() || stopped != end) {
        return std::nullopt;
    }
    return value;
}

}  // namespace

std::optional<MacAddress> MacAddress::fromText(std::string_view text) {
    auto const first = text.find_first_of(":-");
    if (first == std::string_view::npos) {
        return std::nullopt;
    }
    char const separator = text[first];
    Octets octets{};
    for (std::size_t i = 0; i < octets.size(); ++i) {
        bool const isLast = i + 1 == octets.size();
        auto const end = isLast ? text.size() : text.find(separator);
        auto const value =
            end == std::string_view::npos ? std::nullopt : octet(text.substr(0, end));
        if (!value) {
            return std::nullopt;
        }
        octets[i] = *value;
        text.remove_prefix(isLast ? end : end + 1);
    }
    return MacAddress(octets);
}

std::string MacAddress::text() const {
    std::string text;
    for (auto const& value : octets_) {
        text += text.empty() ? "" : ":";
        text += Vanta::hexText({&value, 1});
    }
    return text;
}

std::optional<IpAddress> IpAddress::fromText(std::string_view text) {
    std::string const terminated(text);
    if (terminated.find('\0') != std::string::npos) {
        return std::nullopt;  // inet_pton would see a shorter text
    }
    V4Octets v4{};
    if (inet_pton(AF_INET, terminated.c_str(), v4.data()) == 1) {
        return IpAddress(v4);
    }
    V6Octets v6{};
    if (inet_pton(AF_INET6, terminated.c_str(), v6.data()) == 1) {
        return IpAddress(v6);
    }
    return std::nullopt;
}

std::string IpAddress::text() const {
    std::array<char, INET6_ADDRSTRLEN> buffer{};
    return inet_ntop(isV6_ ? AF_INET6 : AF_INET, octets_.data(), buffer.data(), buffer.size());
}

}  // namespace PacketTracer
