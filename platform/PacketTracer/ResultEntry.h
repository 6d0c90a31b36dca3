// One egress entry: a physical interface and a logical one, either of which may be empty.
#pragma once

#include <compare>
#include <functional>

#include "Kel/Reflection.h"
#include "Plexa/IntfId.h"

namespace PacketTracer {

class ResultEntry {
  public:
    static ResultEntry fromPhysicalIntf(Plexa::IntfId const& physical) noexcept {
        return {physical, Plexa::IntfId()};
    }
    static ResultEntry fromPhysicalAndLogicalIntf(Plexa::IntfId const& physical,
                                                  Plexa::IntfId const& logical) noexcept {
        return {physical, logical};
    }

    Plexa::IntfId const& physicalIntf() const noexcept { return physical_; }
    Plexa::IntfId const& logicalIntf() const noexcept { return logical_; }

    friend auto operator<=>(ResultEntry const&, ResultEntry const&) noexcept = default;

  private:
    ResultEntry(Plexa::IntfId const& physical, Plexa::IntfId const& logical) noexcept
        : physical_(physical), logical_(logical) {}

    Plexa::IntfId physical_;
    Plexa::IntfId logical_;
};

inline void reflectValue(Kel::AttributeSink& sink, ResultEntry const& entry) {
    sink.listStart();
    Kel::reflectValue(sink, entry.physicalIntf());
    Kel::reflectValue(sink, entry.logicalIntf());
    sink.listEnd();
}

}  // namespace PacketTracer

template <>
struct std::hash<PacketTracer::ResultEntry> {
    std::size_t operator()(PacketTracer::ResultEntry const& entry) const noexcept {
        return entry.physicalIntf().hash() ^ (entry.logicalIntf().hash() << 1);
    }
};
