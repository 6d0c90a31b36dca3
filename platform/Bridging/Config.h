// The configured VLANs and their members, kept by the agent and read by the plug-in.
//
// Nothing here publishes. Thread: the event thread.
#pragma once

#include "Bridging/VlanId.h"
#include "Kel/Collection.h"
#include "Kel/Object.h"
#include "Plexa/IntfId.h"

namespace Bridging {

// What a VLAN says of one member. The tracer only asks which interfaces are members.
struct VlanPortConfig {};

class VYN_EXPORT VlanConfig final : public Kel::Object {
  public:
    using Intfs = Kel::Collection<Plexa::IntfId, VlanPortConfig>;

    static Vanta::Ptr<VlanConfig> VlanConfigIs(VlanId vlanId);

    VlanId vlanId() const noexcept { return vlanId_; }

    // The member interfaces. Naming one twice counts once.
    Intfs const& intf() const noexcept { return intf_; }
    void intfIs(Plexa::IntfId const& member) { intf_.findOrInsert(member); }
    bool intfDel(Plexa::IntfId const& member) { return intf_.remove(member).has_value(); }

    // Whether the VLAN belongs to a routed port or sub-interface instead of being configured.
    bool internal() const noexcept { return internal_; }
    void internalIs(bool internal) noexcept { internal_ = internal; }

    Kel::TypeInfo const& typeInfo() const noexcept override;

  private:
    friend struct Vanta::NodeFactory;
    explicit VlanConfig(VlanId vlanId) : vlanId_(vlanId) {}
    ~VlanConfig() override = default;

    VlanId vlanId_;
    Intfs intf_;
    bool internal_ = false;
};

class VYN_EXPORT Config final : public Kel::Object {
  public:
    using VlanConfigs = Kel::Collection<VlanId, Vanta::Ptr<VlanConfig>>;

    static Vanta::Ptr<Config> ConfigIs();

    VlanConfigs const& vlanConfig() const noexcept { return vlanConfig_; }
    // The VLAN, or null.
    Vanta::Ptr<VlanConfig const> vlanConfig(VlanId vlanId) const;
    // The VLAN, created without members if it is absent.
    Vanta::Ptr<VlanConfig> vlanConfigIs(VlanId vlanId);
    bool vlanConfigDel(VlanId vlanId) { return vlanConfig_.remove(vlanId).has_value(); }

    Kel::TypeInfo const& typeInfo() const noexcept override;

  private:
    friend struct Vanta::NodeFactory;
    Config() = default;
    ~Config() override = default;

    VlanConfigs const& allVlans() const noexcept { return vlanConfig_; }

    VlanConfigs vlanConfig_;
};

}  // namespace Bridging
