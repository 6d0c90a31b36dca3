// The chip's port tables, kept by the agent and read by the plug-in.
//
// Nothing here publishes: readers look things up at the moment of use. Thread: the event thread.
#pragma once

#include "Kel/Collection.h"
#include "Kel/Object.h"
#include "Plexa/IntfId.h"
#include "VynSystem/PortInfo.h"

namespace VynSystem {

class VYN_EXPORT SystemStatus final : public Kel::Object {
  public:
    using PortInfos = Kel::Collection<Plexa::IntfId, PortInfo>;
    using PortIntfIds = Kel::Collection<VynPortTypes::PortIndex, Plexa::IntfId>;

    static Vanta::Ptr<SystemStatus> SystemStatusIs();

    // Where packets that arrive on an interface enter the chip.
    PortInfos const& portInfo() const noexcept { return portInfo_; }
    void portInfoIs(Plexa::IntfId const& intf, PortInfo const& info);
    // False if there was none.
    bool portInfoDel(Plexa::IntfId const& intf);

    // The interface of an egress port index.
    PortIntfIds const& portToIntfId() const noexcept { return portToIntfId_; }
    void portToIntfIdIs(VynPortTypes::PortIndex port, Plexa::IntfId const& intf);
    bool portToIntfIdDel(VynPortTypes::PortIndex port);

    Kel::TypeInfo const& typeInfo() const noexcept override;

  private:
    friend struct Vanta::NodeFactory;
    SystemStatus() = default;
    ~SystemStatus() override = default;

    PortInfos portInfo_;
    PortIntfIds portToIntfId_;
};

}  // namespace VynSystem
