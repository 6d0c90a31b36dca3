// A full trace on the software chip in which one call of the chip fails, each call in its turn.
#include <gtest/gtest.h>
#include <unistd.h>

#include <ostream>
#include <string>
#include <vector>

#include "Trace/Tap.h"
#include "Vanta/Assert.h"
#include "agent/ForwardingAgent.h"
#include "switchfile/SwitchFile.h"

namespace Agent {
namespace {

using SoftChip::JournalEntry;
using SoftChip::SdkFunction;
using Lines = std::vector<std::string>;

constexpr int failure = -5;
constexpr char const* switchFile = R"({
    "routerMac": "02:00:00:00:ff:01",
    "vlans": {"10": {}},
    "interfaces": {
        "Ethernet1": {"port": "1/3", "access": 10},
        "Ethernet2": {"port": "2/5", "access": 10}
    },
    "fdb": {"10": {"02:00:00:00:00:02": "Ethernet2"}}
})";

PacketTracer::RequestId const id("noc", 1);

Lines operator+(Lines const& first, Lines const& second) {
    Lines all = first;
    all.insert(all.end(), second.begin(), second.end());
    return all;
}

// The calls of one trace, from the moment at which its request is added.
Lines const injection{"getPktCounters", "genOnePkt"};
Lines const counter{"getPktCounters"};
Lines const ack{"pipe_mgr_flow_lrn_notify_ack"};
Lines const disable{"disableAppId", "disablePktGen"};
// The counter is read at once, and again when the chip has worked and sent the digest.
Lines const wholeTrace = injection + counter + ack + counter + disable;
// What a restart of the tracer adds.
Lines const restart{"pipe_mgr_lrn_digest_notification_deregister",
                    "pipe_mgr_lrn_digest_notification_register"};

// One agent with one client, the chip moved by hand.
class Road {
  public:
    Road()
        : agent(SwitchFile::parseSwitchFile(switchFile, "test"),
                {.mode = SoftChip::Mode::stepwise}) {
        agent.clientConfigs().entryIs("noc", config);
        agent.clientStatuses().entryIs("noc", status);
        agent.chip().drain();
        callsBefore_ = calls().size();
    }
    Road(Road const&) = delete;
    Road& operator=(Road const&) = delete;

    // A request is answered and withdrawn; then the tracer is loaded anew.
    void fullTrace() {
        auto const request = PacketTracer::Request::RequestIs(id);
        std::vector<std::uint8_t> frame{2, 0, 0, 0, 0, 2, 2, 0, 0, 0, 0, 1, 0x88, 0xb5};
        frame.resize(64);
        request->frameIs(std::move(frame));
        request->intfIs(*Plexa::IntfId::fromName("Ethernet1"));
        request->validIs(true);
        config->requestIs(request);
        for (int turns = 0; turns < 12; ++turns) {
            agent.loop().turn();
            agent.chip().step();
        }
        expectAnswered();
        config->requestDel(id);
        agent.loop().turn();
        EXPECT_TRUE(status->result().empty());
        EXPECT_TRUE(agent.tracer().pktGenStatus()->status().empty());
        EXPECT_TRUE(agent.tracer().pktGenCfg()->cfg().empty());
        EXPECT_EQ(agent.chip().outstandingMessages(), unacknowledged);
        agent.restartTracer();
    }

    Lines callsMade() {
        auto const all = calls();
        return {all.begin() + static_cast<std::ptrdiff_t>(callsBefore_), all.end()};
    }

    ForwardingAgent agent;
    Vanta::Ptr<PacketTracer::ClientConfig> config = PacketTracer::ClientConfig::ClientConfigIs();
    Vanta::Ptr<PacketTracer::ClientStatus> status = PacketTracer::ClientStatus::ClientStatusIs();
    std::size_t unacknowledged = 0;
    Lines told;  // traces of failures, and of the tracer's leave

  private:
    Lines calls() {
        Lines names;
        for (auto const& entry : agent.chip().journal().entries()) {
            if (entry.kind == JournalEntry::Kind::call) {
                names.emplace_back(sdkFunctionName(entry.function));
            }
        }
        return names;
    }
    // The packet left by Ethernet2, whatever failed on the way.
    void expectAnswered() const {
        auto const result = status->result(id);
        ASSERT_TRUE(result);
        EXPECT_TRUE(result->valid());
        EXPECT_EQ(static_cast<unsigned>(result->state()), 4U);
        EXPECT_EQ(result->egressIntf().size(), 1U);
        EXPECT_TRUE(result->egressIntf().has(
            PacketTracer::ResultEntry::fromPhysicalIntf(*Plexa::IntfId::fromName("Ethernet2"))));
        auto const& engine = *agent.tracer().pktGenSm();
        EXPECT_EQ(engine.state(), VynPacketTracer::PktGenState::idle);
    }

    void traced(std::string_view, unsigned level, std::string_view text) {
        if (level == 1 || text.find("deregistered") != text.npos) {
            told.emplace_back(text);
        }
    }

    std::size_t callsBefore_ = 0;
    Trace::Tap const traces_ = Trace::Tap::to<&Road::traced>(this);
};

Lines const takenLeave{"deRegisterPktTracerDigest:pktTracerDigest deregistered:0"};

// The failing call, by its place among those of its function, and what comes of it.
struct Failing {
    char const* name;
    SdkFunction call;
    unsigned nth;
    Lines told;
    Lines calls;
    std::size_t unacknowledged = 0;
};

std::ostream& operator<<(std::ostream& out, Failing const& failing) {
    return out << failing.name;
}

class FailingChipCall : public testing::TestWithParam<Failing> {};

TEST(ChipCall, WithoutAFailureTheCallsAreThese) {
    Road road;
    road.fullTrace();
    EXPECT_EQ(road.told, takenLeave);
    EXPECT_EQ(road.callsMade(), wholeTrace + restart);
}

TEST_P(FailingChipCall, HasItsOutcome) {
    Failing const& failing = GetParam();
    Road road;
    road.agent.chip().faults().failIs(failing.call, failure, failing.nth);
    road.unacknowledged = failing.unacknowledged;
    road.fullTrace();
    EXPECT_EQ(road.told, failing.told);
    EXPECT_EQ(road.callsMade(), failing.calls + restart);
}

std::string const counterNotRead = "getPktCounters:error retrieving pktGen counters for pipeId:1";

// A job whose call failed is tried again from its phase-0 data on. One that had its answer already
// loses it with the clean-up, so its packet is sent once more.
INSTANTIATE_TEST_SUITE_P(
    Each, FailingChipCall,
    testing::Values(
        Failing{"CounterBeforeTheInjection", SdkFunction::getPktCounters, 1,
                Lines{counterNotRead} + takenLeave, counter + disable + wholeTrace},
        Failing{"Injection", SdkFunction::genOnePkt, 1,
                Lines{"sendPkt:Error sending pkt clientName:noc reqId:1"} + takenLeave,
                injection + disable + wholeTrace},
        Failing{"CounterBeforeThePacketWasSent", SdkFunction::getPktCounters, 2,
                Lines{counterNotRead} + takenLeave, wholeTrace},
        Failing{"Acknowledgement", SdkFunction::notifyAck, 1,
                Lines{"rcvPktTracerLearningDigest:failed to notify ack"} + takenLeave, wholeTrace,
                1},
        Failing{"CounterAfterThePacketWasSent", SdkFunction::getPktCounters, 3,
                Lines{counterNotRead} + takenLeave,
                injection + counter + ack + counter + counter + disable},
        Failing{"DisablingTheApplication", SdkFunction::disableAppId, 1,
                Lines{"disablePktGen:Error disabling appId for pipe:1 deviceId:0"} + takenLeave,
                injection + counter + ack + counter + Lines{"disableAppId"} + disable + wholeTrace},
        Failing{"DisablingTheGenerator", SdkFunction::disablePktGen, 1,
                Lines{"disablePktGen:Error disabling pktGen for pipe:1 deviceId"} + takenLeave,
                injection + counter + ack + counter + disable + disable + wholeTrace},
        Failing{"Deregistration", SdkFunction::digestDeregister, 1,
                Lines{"deRegisterPktTracerDigest:pktTracerDigest deregistered:-5"}, wholeTrace}),
    [](auto const& failing) { return std::string(failing.param.name); });

TEST(ChipCall, ARegistrationThatFailsEndsTheProcess) {
    Road road;
    road.agent.chip().faults().failIs(SdkFunction::digestRegister, failure);
    EXPECT_EXIT(
        {
            Vanta::LastStep const step(
                [](void*, std::string_view errorClass, std::string_view text) {
                    ::_exit(errorClass == "assert" && text == "false" ? 3 : 4);
                });
            road.fullTrace();
        },
        testing::ExitedWithCode(3), "assertion failed: false");
}

}  // namespace
}  // namespace Agent
