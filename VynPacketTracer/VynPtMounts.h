// The parts of the state database that the plug-in needs mounted.
#pragma once

#include "Kel/Dir.h"
#include "Kel/Object.h"
#include "VynExport.h"

namespace VynPacketTracer {

// The two directories, without their paths: the agent chooses the paths and mounts them. Setting
// the directory that is held already changes nothing; nothing is ever published. The destructor
// releases `status` first, then `config`. Thread: the event thread.
class VYN_EXPORT VynPacketTracerMounts final : public Kel::Object {
  public:
    static Vanta::Ptr<VynPacketTracerMounts> VynPacketTracerMountsIs();

    // The clients' configuration, which is only read through here.
    Vanta::Ptr<Kel::Dir const> const& config() const noexcept { return config_; }
    void configIs(Vanta::Ptr<Kel::Dir const> const& config);

    // The clients' status, which is written through here.
    Vanta::Ptr<Kel::Dir> const& status() const noexcept { return status_; }
    void statusIs(Vanta::Ptr<Kel::Dir> const& status);

    Kel::TypeInfo const& typeInfo() const noexcept override;

  private:
    friend struct Vanta::NodeFactory;
    VynPacketTracerMounts() = default;
    ~VynPacketTracerMounts() override = default;

    Vanta::Ptr<Kel::Dir const> config_;
    Vanta::Ptr<Kel::Dir> status_;
};

VYN_EXPORT Vanta::Ptr<VynPacketTracerMounts> vynPacketTracerMountsFactory();

}  // namespace VynPacketTracer
