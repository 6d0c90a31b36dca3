// What forwarding knows of LAGs, kept by the agent and read by the plug-in.
//
// Nothing here publishes. Thread: the event thread.
#pragma once

#include <type_traits>

#include "Kel/Collection.h"
#include "Kel/Object.h"
#include "Plexa/IntfId.h"

namespace Fen {

// The ports of a LAG. The tracer only asks whether there is one.
struct FenLagPortList {};

class VYN_EXPORT FenCommonSmData final : public Kel::Object {
  public:
    using LagToPort = Kel::Collection<Plexa::IntfId, FenLagPortList>;
    using PortToLag = Kel::Collection<Plexa::IntfId, Plexa::IntfId>;

    static Vanta::Ptr<FenCommonSmData> FenCommonSmDataIs();

    // The LAGs: an interface that is a key here is one.
    LagToPort const& lagToPort() const noexcept { return lagToPort_; }
    void lagToPortIs(Plexa::IntfId const& lag);
    bool lagToPortDel(Plexa::IntfId const& lag);

    // The LAG of each member port.
    PortToLag const& portToLag() const noexcept { return portToLag_; }
    void portToLagIs(Plexa::IntfId const& member, Plexa::IntfId const& lag);
    bool portToLagDel(Plexa::IntfId const& member);

    Kel::TypeInfo const& typeInfo() const noexcept override;

  private:
    friend struct Vanta::NodeFactory;
    FenCommonSmData() = default;
    ~FenCommonSmData() override = default;

    LagToPort lagToPort_;
    PortToLag portToLag_;
};

}  // namespace Fen
