#include "softchip/Addresses.h"

#include <arpa/inet.h>

#include <array>
#include <charconv>
#include <cstdio>

namespace SoftChip {
namespace {

// The upper `length` bits of a 64-bit word.
std::uint64_t wordMask(unsigned length) {
    return length == 0 ? 0 : ~std::uint64_t{0} << (64 - length);
}

std::uint64_t bigEndian(std::span<std::uint8_t const> bytes) {
    std::uint64_t value = 0;
    for (auto byte : bytes) {
        value = value << 8 | byte;
    }
    return value;
}

template <class Number>
std::optional<Number> number(std::string_view text, int base) {
    Number value{};
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
    if (text.empty() || error != std::errc{} || end != text.data() + text.size()) {
        return std::nullopt;
    }
    return value;
}

}  // namespace

MacAddress MacAddress::fromBytes(std::span<std::uint8_t const> bytes) {
    return {bigEndian(bytes.first(6))};
}

std::optional<MacAddress> MacAddress::fromText(std::string_view text) {
    MacAddress mac;
    for (int group = 0; group < 6; ++group) {
        auto const end = group == 5 ? text.size() : text.find_first_of(":-");
        if (end > 2) {  // also where there is no separator
            return std::nullopt;
        }
        auto const byte = number<std::uint8_t>(text.substr(0, end), 16);
        if (!byte) {
            return std::nullopt;
        }
        mac.value = mac.value << 8 | *byte;
        text.remove_prefix(group == 5 ? end : end + 1);
    }
    return mac;
}

std::string MacAddress::text() const {
    std::array<char, 18> buffer{};
    auto const byte = [this](int i) { return static_cast<unsigned>(value >> (40 - 8 * i) & 0xff); };
    std::snprintf(buffer.data(), buffer.size(), "%02x:%02x:%02x:%02x:%02x:%02x", byte(0), byte(1),
                  byte(2), byte(3), byte(4), byte(5));
    return buffer.data();
}

IpAddress IpAddress::fromBytes(Family family, std::span<std::uint8_t const> bytes) {
    if (family == Family::ipv4) {
        return v4(static_cast<std::uint32_t>(bigEndian(bytes.first(4))));
    }
    return v6(bigEndian(bytes.first(8)), bigEndian(bytes.subspan(8, 8)));
}

std::optional<IpAddress> IpAddress::fromText(std::string_view text) {
    std::string const copy(text);
    std::array<std::uint8_t, 16> bytes{};
    if (copy.size() != std::string_view(copy.c_str()).size()) {
        return std::nullopt;  // a zero byte inside, which inet_pton would take for the end
    }
    if (inet_pton(AF_INET, copy.c_str(), bytes.data()) == 1) {
        return fromBytes(Family::ipv4, bytes);
    }
    if (inet_pton(AF_INET6, copy.c_str(), bytes.data()) == 1) {
        return fromBytes(Family::ipv6, bytes);
    }
    return std::nullopt;
}

IpAddress IpAddress::masked(unsigned length) const {
    if (length <= 64) {
        return {hi & wordMask(length), 0, family};
    }
    return {hi, lo & wordMask(length - 64), family};
}

bool IpAddress::isMulticast() const {
    return family == Family::ipv4 ? hi >> 60 == 0xe : hi >> 56 == 0xff;
}

std::string IpAddress::text() const {
    std::array<std::uint8_t, 16> bytes{};
    for (unsigned i = 0; i < 8; ++i) {
        bytes[i] = static_cast<std::uint8_t>(hi >> (56 - 8 * i));
        bytes[8 + i] = static_cast<std::uint8_t>(lo >> (56 - 8 * i));
    }
    std::array<char, INET6_ADDRSTRLEN> buffer{};
    inet_ntop(family == Family::ipv4 ? AF_INET : AF_INET6, bytes.data(), buffer.data(),
              buffer.size());
    return buffer.data();
}

Prefix Prefix::of(IpAddress address, unsigned length) {
    return {address.masked(length), static_cast<std::uint8_t>(length)};
}

std::optional<Prefix> Prefix::fromText(std::string_view text) {
    auto const slash = text.find('/');
    auto const address = IpAddress::fromText(text.substr(0, slash));
    if (!address) {
        return std::nullopt;
    }
    if (slash == std::string_view::npos) {
        return of(*address, addressBits(address->family));
    }
    auto const length = number<unsigned>(text.substr(slash + 1), 10);
    if (!length || *length > addressBits(address->family) || address->masked(*length) != *address) {
        return std::nullopt;
    }
    return of(*address, *length);
}

std::string Prefix::text() const {
    return address.text() + "/" + std::to_string(length);
}

}  // namespace SoftChip
