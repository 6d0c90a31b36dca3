// Frames for tests, made of parts that are joined: join({ethernet(...), tag(10), ipv4(...)}). The
// EtherType belongs to the part that it announces. Nothing here shares code with the parser.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string_view>
#include <vector>

#include "softchip/Addresses.h"

namespace SoftChip::FrameBuilder {

using Bytes = std::vector<std::uint8_t>;

inline MacAddress mac(std::string_view text) {
    return MacAddress::fromText(text).value();
}

inline IpAddress ip(std::string_view text) {
    return IpAddress::fromText(text).value();
}

inline Prefix prefix(std::string_view text) {
    return Prefix::fromText(text).value();
}

inline Bytes join(std::initializer_list<Bytes> parts) {
    Bytes all;
    for (auto const& part : parts) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

// The lowest `count` bytes of a number, in network order.
inline Bytes number(std::uint64_t value, int count) {
    Bytes bytes;
    for (int i = count - 1; i >= 0; --i) {
        bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
    }
    return bytes;
}

inline Bytes address(IpAddress const& a) {
    return a.family == Family::ipv4 ? number(a.asV4(), 4)
                                    : join({number(a.hi, 8), number(a.lo, 8)});
}

inline Bytes ethernet(MacAddress dst, MacAddress src) {
    return join({number(dst.value, 6), number(src.value, 6)});
}

inline Bytes tag(unsigned vlan, unsigned tpid = 0x8100, unsigned priority = 0) {
    return join({number(tpid, 2), number(priority << 13 | vlan, 2)});
}

inline std::uint16_t internetChecksum(Bytes const& header) {
    std::uint32_t sum = 0;
    for (std::size_t i = 0; i < header.size(); ++i) {
        sum += i % 2 ? header[i] : header[i] << 8;
    }
    while (sum > 0xffff) {
        sum = (sum >> 16) + (sum & 0xffff);
    }
    return static_cast<std::uint16_t>(~sum);
}

struct Ipv4 {
    std::string_view src = "10.0.10.7";
    std::string_view dst = "10.0.20.7";
    unsigned ttl = 64;
    unsigned protocol = 17;
    unsigned dscp = 0;
    unsigned fragment = 0;  // flags and offset
    Bytes options = {};     // a multiple of four bytes
};

inline Bytes ipv4(Ipv4 const& h, Bytes const& payload = {}) {
    auto const words = 5 + h.options.size() / 4;
    auto header = join({number(0x40 | words, 1), number(h.dscp << 2, 1),
                        number(words * 4 + payload.size(), 2), number(0x1234, 2),
                        number(h.fragment, 2), number(h.ttl, 1), number(h.protocol, 1),
                        number(0, 2), address(ip(h.src)), address(ip(h.dst)), h.options});
    auto const sum = internetChecksum(header);
    header[10] = static_cast<std::uint8_t>(sum >> 8);
    header[11] = static_cast<std::uint8_t>(sum);
    return join({number(0x0800, 2), header, payload});
}

struct Ipv6 {
    std::string_view src = "2001:db8:10::7";
    std::string_view dst = "2001:db8:20::7";
    unsigned ttl = 64;
    unsigned nextHeader = 17;
    unsigned dscp = 0;
};

inline Bytes ipv6(Ipv6 const& h, Bytes const& payload = {}) {
    return join({number(0x86dd, 2), number(0x60000000 | h.dscp << 22, 4), number(payload.size(), 2),
                 number(h.nextHeader, 1), number(h.ttl, 1), address(ip(h.src)), address(ip(h.dst)),
                 payload});
}

// An extension header of 8 * (units + 1) bytes.
inline Bytes extension(unsigned next, unsigned units = 0) {
    return join({number(next, 1), number(units, 1), Bytes(6 + 8 * units)});
}

inline Bytes fragmentHeader(unsigned next, unsigned offset, bool more) {
    return join({number(next, 1), number(0, 1), number(offset << 3 | more, 2), number(77, 4)});
}

inline Bytes udp(unsigned src = 1024, unsigned dst = 4791) {
    return join({number(src, 2), number(dst, 2), number(8, 2), number(0, 2)});
}

inline Bytes tcp(unsigned src = 1024, unsigned dst = 80, unsigned flags = 0x02) {
    return join({number(src, 2), number(dst, 2), number(1, 4), number(0, 4), number(0x50, 1),
                 number(flags, 1), number(512, 2), number(0, 4)});
}

inline Bytes icmp(unsigned type = 8, unsigned code = 0) {
    return join({number(type, 1), number(code, 1), number(0, 2), number(1, 4)});
}

inline Bytes arp(std::string_view sender, std::string_view target, unsigned operation = 1) {
    return join({number(0x0806, 2), number(1, 2), number(0x0800, 2), number(6, 1), number(4, 1),
                 number(operation, 2), Bytes(6, 0x02), address(ip(sender)), Bytes(6),
                 address(ip(target))});
}

}  // namespace SoftChip::FrameBuilder
