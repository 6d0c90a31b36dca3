// What the plug-in's tests share: a scripted chip, a loop, forwarding state and a recorder, driven
// by a few functions.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <functional>
#include <initializer_list>
#include <stdexcept>
#include <string>

#include "Bridging/Config.h"
#include "Fen/FenCommonSmData.h"
#include "Kel/Dir.h"
#include "Kel/Error.h"
#include "Orb/Task.h"
#include "Orb/TaskSchedulerRoot.h"
#include "PacketTracer/ClientConfig.h"
#include "PacketTracer/ClientStatus.h"
#include "Vanta/Assert.h"
#include "VynPacketTracer/Recorder.h"
#include "VynSlice/ChipStatus.h"
#include "VynSystem/SystemStatus.h"
#include "scriptchip/ScriptChip.h"

inline Plexa::IntfId intf(std::string_view name) {
    Plexa::IntfId id;
    EXPECT_TRUE(id.nameIs(name)) << name;
    return id;
}

inline PacketTracer::RequestId id(std::string_view client, std::uint32_t number) {
    return {client, number};
}

// The lines when an engine with trace support is destroyed.
inline Lines const deregistered{
    "sdk pipe_mgr_lrn_digest_notification_deregister session=1 device=0 handle=77 -> 0",
    "VynPtPktGenSm/4 deRegisterPktTracerDigest:pktTracerDigest deregistered:0"};

// The chip, the loop and the switch. Fixtures with a tracer or a part of it derive from it, so that
// the chip is destroyed last.
class Switch : public testing::Test {
  protected:
    using SdkFunction = SdkSeam::SdkFunction;

    Switch() { loop->yieldAfterIs(Orb::TaskSchedulerRoot::neverYield); }
    void TearDown() override {
        // A test's hooks inside calls must not run while the tracer is destroyed.
        recorder.onSdkCall = nullptr;
        recorder.onTrace = nullptr;
        recorder.mark = nullptr;
    }
    // From now on the first trace statement with this text raises an error.
    void failsAtTrace(std::string const& text) {
        recorder.onTrace = [this, text] {
            if (recorder.lines().back().find(text) != std::string::npos) {
                recorder.onTrace = nullptr;
                throw std::runtime_error("the tap");
            }
        };
    }

    // ---- The forwarding state

    void port(std::string_view name, std::uint8_t pipe, std::uint16_t index) {
        systemStatus->portInfoIs(intf(name), {pipe, VynPortTypes::PortIndex(index)});
    }
    void egressPort(std::uint16_t port, std::string_view name) {
        systemStatus->portToIntfIdIs(VynPortTypes::PortIndex(port), intf(name));
    }
    void lag(std::string_view name) { fcsd->lagToPortIs(intf(name)); }
    void lagMember(std::string_view name, std::string_view lagName) {
        fcsd->portToLagIs(intf(name), intf(lagName));
    }
    Vanta::Ptr<Bridging::VlanConfig> vlan(std::uint16_t number,
                                          std::initializer_list<std::string_view> members) {
        auto const made = bridgingConfig->vlanConfigIs(Bridging::VlanId(number));
        for (std::string_view const member : members) {
            made->intfIs(intf(member));
        }
        return made;
    }
    void cpuPort(std::string_view name) { chipStatus->cpuIntfIs(intf(name)); }

    // ---- Events

    void turn(unsigned times = 1) {
        for (unsigned i = 0; i < times; ++i) {
            loop->turn();
        }
    }
    void phase0(std::string_view name, Vanta::Bytes data = {}, std::uint32_t status = 0) {
        chip.phase0Data()->answerIs(intf(name), std::move(data), status);
    }
    void counter(std::uint64_t value, std::uint32_t pipe = 0) { chip.counterIs(pipe, value); }
    void fails(SdkFunction function, p4_pd_status_t rc = -5, std::uint32_t times = 1) {
        chip.sdkReturnIs(function, rc, times);
    }
    void digest(std::initializer_list<SdkSeam::TraceDigest> entries) { chip.digest(entries); }

    // ---- What came of them

    // What happened since this was asked last.
    Lines happened() { return recorder.take(); }
    Lines happened(std::string_view beginningWith) {
        return beginning(beginningWith, recorder.take());
    }
    // The lines that an event causes, without those from before.
    Lines after(std::function<void()> const& event) {
        recorder.take();
        event();
        return happened();
    }

    // Expects that the event ends the process: with an error of this class and text, after exactly
    // these lines.
    void expectEnd(std::function<void()> const& event, Lines const& lines,
                   std::string const& errorClass, std::string const& text) {
        std::string expected = errorClass == "assert" ? "assertion failed: " + text + "\n" : "";
        for (auto const& line : lines) {
            expected += line + "\n";
        }
        expected += "end: " + errorClass + ": " + text + "\n";
        EXPECT_EXIT(
            {
                recorder.take();
                Vanta::LastStep const step(lastStep, &recorder);
                event();
            },
            testing::ExitedWithCode(endStatus), "^" + literally(expected) + "$");
    }

    Recorder recorder;
    ScriptChip::ScriptChip chip{&recorder};
    Vanta::Ptr<Orb::TaskSchedulerRoot> loop = Orb::TaskSchedulerRoot::TaskSchedulerRootIs();
    Vanta::Ptr<VynSystem::SystemStatus> systemStatus = VynSystem::SystemStatus::SystemStatusIs();
    Vanta::Ptr<Fen::FenCommonSmData> fcsd = Fen::FenCommonSmData::FenCommonSmDataIs();
    Vanta::Ptr<Bridging::Config> bridgingConfig = Bridging::Config::ConfigIs();
    Vanta::Ptr<VynSlice::ChipStatus> chipStatus = VynSlice::ChipStatus::ChipStatusIs();

  private:
    static constexpr int endStatus = 3;

    static void lastStep(void* recorder, std::string_view errorClass, std::string_view text) {
        std::string all;
        for (auto const& line : static_cast<Recorder const*>(recorder)->lines()) {
            all += line + "\n";
        }
        all.append("end: ").append(errorClass).append(": ").append(text).append("\n");
        std::fputs(all.c_str(), stderr);
        std::fflush(stderr);
        ::_exit(endStatus);
    }
    // The regular expression that matches this text.
    static std::string literally(std::string const& text) {
        std::string pattern;
        for (char const c : text) {
            if (std::string_view("\\^$.|?*+()[]{}").find(c) != std::string_view::npos) {
                pattern += '\\';
            }
            pattern += c;
        }
        return pattern;
    }
};

// A subscription that calls back, for tests that act from inside a notification.
class OnPublication {
  public:
    using Reaction = std::function<void(Vanta::AttributeNumber, Vanta::ValueRef)>;

    OnPublication(Vanta::Publisher const& publisher, Reaction reaction)
        : reaction_(std::move(reaction)) {
        subscriber_.subscribe<&OnPublication::dispatch>(publisher, this);
    }
    OnPublication(OnPublication const&) = delete;
    OnPublication& operator=(OnPublication const&) = delete;

  private:
    void dispatch(Vanta::Publisher const&, Vanta::Subscriber&, Vanta::AttributeNumber attribute,
                  Vanta::ValueRef key, Vanta::ValueRef) {
        reaction_(attribute, key);
    }

    Reaction reaction_;
    Vanta::Subscriber subscriber_;
};

// A client's request, as clients write it: the packet is 14 bytes, valid unless told otherwise.
inline Vanta::Ptr<PacketTracer::Request> makeRequest(std::string_view client, std::uint32_t number,
                                                     std::string_view ingress, bool valid = true) {
    auto const request = PacketTracer::Request::RequestIs(id(client, number));
    request->intfIs(intf(ingress));
    request->etherTypeIs(0x0800);
    request->frameIs({0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 2, 0, 0, 0, 0, 1, 8, 0});
    request->validIs(valid);
    return request;
}
inline constexpr std::string_view requestPacket = "ffffffffffff0200000000010800";
