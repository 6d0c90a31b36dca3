// The IP packet that a packet's fields describe, from the IP header on.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "PacketTracer/PacketFields.h"

namespace PacketTracer {

// Appends numbers in network order.
class PacketBytes {
  public:
    explicit PacketBytes(std::size_t capacity) { bytes_.reserve(capacity); }

    void add8(std::uint8_t value) { bytes_.push_back(value); }
    void add16(std::uint16_t value) {
        add8(static_cast<std::uint8_t>(value >> 8));
        add8(static_cast<std::uint8_t>(value));
    }
    void add32(std::uint32_t value) {
        add16(static_cast<std::uint16_t>(value >> 16));
        add16(static_cast<std::uint16_t>(value));
    }
    void add(std::span<std::uint8_t const> bytes) {
        bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
    }
    // Zeros up to a size; nothing if it is reached already.
    void fillTo(std::size_t size) {
        if (bytes_.size() < size) {
            bytes_.resize(size);
        }
    }
    // Precondition: both bytes are there.
    void put16(std::size_t at, std::uint16_t value) {
        bytes_.at(at) = static_cast<std::uint8_t>(value >> 8);
        bytes_.at(at + 1) = static_cast<std::uint8_t>(value);
    }

    std::size_t size() const noexcept { return bytes_.size(); }
    std::span<std::uint8_t const> view() const noexcept { return bytes_; }
    std::vector<std::uint8_t> take() { return std::move(bytes_); }

  private:
    std::vector<std::uint8_t> bytes_;
};

// `size` bytes: the headers with lengths and checksums right, the payload (without one, what an
// ICMP type demands), then zeros. Precondition: packetFault() names no fault of the IP part, and
// `size` holds headers and payload and is no longer than an IP packet can be. Thread: the event
// thread.
std::vector<std::uint8_t> ipPacket(PacketFields const& fields, std::size_t size);

}  // namespace PacketTracer
