// What the agent knows of the chip's own ports, read by the plug-in.
//
// Nothing here publishes. Thread: the event thread.
#pragma once

#include "Kel/Collection.h"
#include "Kel/Object.h"
#include "Plexa/IntfId.h"

namespace VynSlice {

class VYN_EXPORT ChipStatus final : public Kel::Object {
  public:
    struct CpuPort {};
    using CpuIntfs = Kel::Collection<Plexa::IntfId, CpuPort>;

    static Vanta::Ptr<ChipStatus> ChipStatusIs();

    // Whether the interface is one of the chip's ports to the CPU.
    bool isCpuIntf(Plexa::IntfId const& intf) const { return cpuIntf_.has(intf); }
    CpuIntfs const& cpuIntf() const noexcept { return cpuIntf_; }
    void cpuIntfIs(Plexa::IntfId const& intf) { cpuIntf_.findOrInsert(intf); }
    bool cpuIntfDel(Plexa::IntfId const& intf) { return cpuIntf_.remove(intf).has_value(); }

    Kel::TypeInfo const& typeInfo() const noexcept override;

  private:
    friend struct Vanta::NodeFactory;
    ChipStatus() = default;
    ~ChipStatus() override = default;

    CpuIntfs cpuIntf_;
};

}  // namespace VynSlice
