// The switch on which whole traces are measured: two ports in one VLAN, the software chip, the
// tracer, and clients that keep requests under way.
//
// Thread: the event thread.
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Bridging/Config.h"
#include "Fen/FenCommonSmData.h"
#include "Kel/Dir.h"
#include "Orb/TaskSchedulerRoot.h"
#include "PacketTracer/ClientConfig.h"
#include "PacketTracer/ClientStatus.h"
#include "VynPacketTracer/VynPtSm.h"
#include "VynSlice/ChipStatus.h"
#include "VynSystem/SystemStatus.h"
#include "softchip/Phase0Data.h"
#include "softchip/SoftChip.h"

namespace Bench {

// The interfaces "Ethernet1" (where packets come in) and "Ethernet2" (where they go).
Plexa::IntfId ingress();
Plexa::IntfId egress();

// A frame of 64 bytes from a host behind Ethernet1 to one behind Ethernet2, in a block of its own.
Vanta::Bytes frame();

// Switch, chip and tracer, as an agent puts them together.
class Host {
  public:
    explicit Host(SoftChip::Mode mode = SoftChip::Mode::threaded);
    ~Host() = default;
    Host(Host const&) = delete;
    Host& operator=(Host const&) = delete;

    // One turn of the loop, which may wait; a stepwise chip makes a step before it.
    void turn();

    SoftChip::SoftChip chip;
    Vanta::Ptr<Orb::TaskSchedulerRoot> loop = Orb::TaskSchedulerRoot::TaskSchedulerRootIs();
    Vanta::Ptr<VynSystem::SystemStatus> systemStatus = VynSystem::SystemStatus::SystemStatusIs();
    Vanta::Ptr<Bridging::Config> bridging = Bridging::Config::ConfigIs();
    Vanta::Ptr<SoftChip::Phase0Data> phase0 = SoftChip::Phase0Data::Phase0DataIs(loop);
    Vanta::Ptr<Kel::Dir> configs = Kel::Dir::DirIs();
    Vanta::Ptr<Kel::Dir> statuses = Kel::Dir::DirIs();
    Vanta::Ptr<VynPacketTracer::PacketTracerSm> tracer;

  private:
    void addPort(Plexa::IntfId const& intf, SoftChip::DevicePort port);

    SoftChip::Mode mode_;
};

// A client. An answer waits until it is taken; the request stands until it is withdrawn.
class Client {
  public:
    Client(Host& host, std::string const& name);
    ~Client();
    Client(Client const&) = delete;
    Client& operator=(Client const&) = delete;

    // One more request, with the next number.
    void add();
    // The number of the request that was answered next, or nothing.
    std::optional<std::uint32_t> takeAnswer();
    void withdraw(std::uint32_t number) { config_->requestDel({name_, number}); }

  private:
    // Waits for one result to become valid.
    struct Watch {
        explicit Watch(Client* owner) : client(owner) {}

        Client* client;
        std::uint32_t number = 0;
        Vanta::Subscriber subscriber;

        void resultValid();
    };

    void resultChanged(Vanta::Change const& change);

    Host& host_;
    Vanta::String name_;
    Vanta::Ptr<PacketTracer::ClientConfig> config_ = PacketTracer::ClientConfig::ClientConfigIs();
    Vanta::Ptr<PacketTracer::ClientStatus> status_ = PacketTracer::ClientStatus::ClientStatusIs();
    std::uint32_t lastNumber_ = 0;
    std::deque<Watch> watches_;
    std::vector<Watch*> freeWatches_;
    std::deque<std::uint32_t> answered_;
    Vanta::Subscriber subscriber_;
};

// Clients that keep so many requests under way in all, evenly.
class Load {
  public:
    Load(Host& host, unsigned clients, unsigned inFlight);
    // Waits for the rest.
    ~Load();
    Load(Load const&) = delete;
    Load& operator=(Load const&) = delete;

    // Takes an answer, turning the loop until there is one. Withdraws the request and adds another
    // one instead.
    void next();
    // Takes that many more answers, with as many requests under way as before, and leaves the
    // answered requests standing.
    void stand(std::uint64_t requests);

  private:
    Client& await(std::uint32_t& number);

    Host& host_;
    std::vector<std::unique_ptr<Client>> clients_;
    std::size_t turn_ = 0;
    unsigned inFlight_;
};

}  // namespace Bench
