// The identity of a request: its client's name and its number.
#pragma once

#include <compare>
#include <cstdint>
#include <functional>

#include "Kel/Reflection.h"
#include "Vanta/String.h"

namespace PacketTracer {

// A plain value; copies share the name. The empty id has an empty name and number 0.
class RequestId {
  public:
    RequestId() noexcept = default;
    RequestId(Vanta::String clientName, std::uint32_t number) noexcept
        : clientName_(std::move(clientName)), number_(number) {}

    Vanta::String const& clientName() const noexcept { return clientName_; }
    std::uint32_t number() const noexcept { return number_; }

    // A hash of both parts, begun with a seed. Requests whose numbers follow one another differ in
    // the last bits alone, so that what a table knows of them lies together; otherwise all bits are
    // mixed.
    std::uint64_t hash(std::uint64_t seed = 0) const noexcept {
        std::uint64_t mixed =
            (clientName_.hash() ^ seed) + (number_ / neighbours) * 0x9e3779b97f4a7c15ULL;
        mixed = (mixed ^ (mixed >> 32)) * 0xff51afd7ed558ccdULL;
        return mixed ^ (mixed >> 32) ^ number_ % neighbours;
    }

    friend bool operator==(RequestId const& a, RequestId const& b) noexcept {
        return a.number_ == b.number_ && a.clientName_ == b.clientName_;
    }
    friend std::strong_ordering operator<=>(RequestId const& a, RequestId const& b) noexcept {
        auto const byName = a.clientName_ <=> b.clientName_;
        return byName != 0 ? byName : a.number_ <=> b.number_;
    }

  private:
    static constexpr std::uint32_t neighbours = 64;

    Vanta::String clientName_;
    std::uint32_t number_ = 0;
};

inline void reflectValue(Kel::AttributeSink& sink, RequestId const& id) {
    sink.listStart();
    Kel::reflectValue(sink, id.clientName());
    Kel::reflectValue(sink, id.number());
    sink.listEnd();
}

}  // namespace PacketTracer

template <>
struct std::hash<PacketTracer::RequestId> {
    using ChoosesPlaces = void;  // see Kel::HashedKey
    std::size_t operator()(PacketTracer::RequestId const& id) const noexcept { return id.hash(); }
};
