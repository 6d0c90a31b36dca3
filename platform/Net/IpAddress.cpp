#include "Net/IpAddress.h"

#include <arpa/inet.h>

namespace Net {

std::optional<IpAddress> IpAddress::fromText(std::string_view text) {
    std::array<char, INET6_ADDRSTRLEN> terminated{};
    if (text.size() >= terminated.size() || text.find('\0') != std::string_view::npos) {
        return std::nullopt;  // inet_pton would see a shorter text
    }
    text.copy(terminated.data(), text.size());
    std::array<std::uint8_t, 16> octets{};
    if (inet_pton(AF_INET, terminated.data(), octets.data()) == 1) {
        return fromOctets(Family::ipv4, octets);
    }
    if (inet_pton(AF_INET6, terminated.data(), octets.data()) == 1) {
        return fromOctets(Family::ipv6, octets);
    }
    return std::nullopt;
}

std::string IpAddress::text() const {
    std::array<char, INET6_ADDRSTRLEN> buffer{};
    return inet_ntop(isV4() ? AF_INET : AF_INET6, octets().data(), buffer.data(), buffer.size());
}

}  // namespace Net
