#include "simulate/DrawnFrame.h"

#include <vector>

namespace Simulate {
namespace {

void putNumber(Bytes& bytes, std::uint64_t value, int count) {
    for (int i = count - 1; i >= 0; --i) {
        bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
    }
}

std::uint16_t checksum(Bytes const& header) {
    std::uint32_t sum = 0;
    for (std::size_t i = 0; i < header.size(); i += 2) {
        sum += static_cast<std::uint32_t>(header[i] << 8 | header[i + 1]);
    }
    while (sum >> 16 != 0) {
        sum = (sum & 0xffff) + (sum >> 16);
    }
    return static_cast<std::uint16_t>(~sum);
}

}  // namespace

Bytes drawFrame(Random& random, unsigned client, std::uint32_t req) {
    static std::vector<std::uint64_t> const targets{0x020000000a0b, 0x020000000a0c, 0x02000000140b,
                                                    0x0200000000ff, 0xffffffffffff, 0x020000000001};
    static std::vector<std::uint32_t> const addresses{0x0a010a0b, 0x0a01140b, 0x0a090005,
                                                      0x0a01140d, 0x0b000001};
    auto const target = random.pick(targets);
    Bytes frame;
    putNumber(frame, target, 6);
    putNumber(frame, 0x02000000ee00 + client, 6);
    if (random.chance(15)) {
        putNumber(frame, 0x81000000 + random.pick(std::vector<std::uint64_t>{10, 20, 100}), 4);
    }
    putNumber(frame, 0x0800, 2);
    Bytes ip;
    putNumber(ip, 0x45000000 + 46, 4);
    putNumber(ip, req, 4);
    putNumber(ip, random.chance(10) ? 0x0111 : 0x4011, 2);
    putNumber(ip, 0, 2);
    putNumber(ip, 0x0a010a05, 4);
    putNumber(ip, random.pick(addresses), 4);
    auto const sum = checksum(ip);
    ip[10] = static_cast<std::uint8_t>(sum >> 8);
    ip[11] = static_cast<std::uint8_t>(sum);
    frame.insert(frame.end(), ip.begin(), ip.end());
    putNumber(frame, client, 2);
    putNumber(frame, req, 4);
    putNumber(frame, random.next(), 8);
    frame.resize(64);
    return frame;
}

}  // namespace Simulate
