#include "agent/TraceClient.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "Trace/Tap.h"
#include "switchfile/SwitchFile.h"

namespace Agent {
namespace {

using namespace std::chrono_literals;

constexpr char const* switchFile = R"({
    "vlans": {"10": {}, "20": {}},
    "interfaces": {
        "Ethernet1": {"port": "0/0", "access": 10},
        "Ethernet2": {"port": "0/1", "access": 10},
        "Ethernet3": {"port": "1/2", "access": 10},
        "Ethernet4": {"port": "0/3", "access": 20}
    },
    "fdb": {"10": {"02:00:00:00:00:02": "Ethernet2"}}
})";

// A client of a switch whose chip does its work step by step, on a clock that is moved by hand.
class TraceClientTest : public testing::Test {
  protected:
    static constexpr auto limit = 2s;

    static Vanta::Bytes frameTo(std::uint8_t lastOctet) {
        std::vector<std::uint8_t> frame(60);
        frame[0] = frame[6] = 0x02;
        frame[5] = lastOctet;
        frame[11] = 0x01;
        frame[12] = 0x88;
        frame[13] = 0xb5;
        return frame;
    }

    // Adds a request for a frame and returns its number.
    std::uint32_t add(Vanta::Bytes const& frame, std::string const& intf = "Ethernet1") {
        auto const request = client_->request();
        request->frameIs(frame);
        request->intfIs(*Plexa::IntfId::fromName(intf));
        client_->add(request);
        return request->id().number();
    }
    std::uint32_t add() { return add(frameTo(2)); }

    // What the client says within so many turns of the loop, the chip working between them.
    std::optional<Answer> within(unsigned turns) {
        for (unsigned turn = 0; turn < turns; ++turn) {
            if (auto answer = client_->poll(0ns)) {
                return answer;
            }
            agent_.chip().step();
        }
        return std::nullopt;
    }
    std::optional<Answer> soon() { return within(100); }
    Answer answer() {
        auto answer = soon();
        EXPECT_TRUE(answer);
        return answer.value_or(Answer());
    }
    void loseDigests(std::uint64_t nth, std::uint64_t times) {
        agent_.chip().faults().digestIs(
            {.fate = SoftChip::DigestFate::lost, .nth = nth, .times = times});
    }

    SwitchFile::SwitchModel const model_ = SwitchFile::parseSwitchFile(switchFile, "test");
    ForwardingAgent agent_{model_, {.mode = SoftChip::Mode::stepwise}};
    TraceClient::Clock::time_point time_;
    std::unique_ptr<TraceClient> client_ =
        std::make_unique<TraceClient>(agent_, "test", limit, [this] { return time_; });
};

// Counts how often the tracer handles a request.
struct Handlings {
    void traced(std::string_view, unsigned, std::string_view text) {
        count += text.starts_with("handleRequest:client:") ? 1 : 0;
    }
    unsigned count = 0;
    Trace::Tap const tap = Trace::Tap::to<&Handlings::traced>(this);
};

TEST_F(TraceClientTest, ARequestThatItAddsIsHandledOnce) {
    Handlings const handlings;
    add();
    EXPECT_EQ(handlings.count, 1U);
}

// ---- Outcomes

TEST_F(TraceClientTest, AFrameForAKnownStationIsForwarded) {
    auto const number = add(frameTo(2));
    auto const got = answer();
    EXPECT_EQ(got.number, number);
    EXPECT_EQ(got.outcome, Outcome::forwarded);
    EXPECT_EQ(got.state, PacketTracer::State::egressFound);
    ASSERT_EQ(got.egress.size(), 1U);
    EXPECT_EQ(got.egress[0].physicalIntf().stringValue(), "Ethernet2");
    ASSERT_TRUE(got.injection);
    EXPECT_EQ(got.injection->egressPort, 1);
    EXPECT_EQ(got.injection->l2Domain, 10);
    EXPECT_EQ(got.injection->frame, frameTo(2));
}

TEST_F(TraceClientTest, AFrameForAnUnknownStationIsFlooded) {
    add(frameTo(9));
    auto const got = answer();
    EXPECT_EQ(got.outcome, Outcome::flooded);
    EXPECT_EQ(got.egress.size(), 2U);
}

TEST_F(TraceClientTest, AFrameThatTheChipDropsIsDropped) {
    agent_.chip().change([](SoftChip::Tables& tables) { tables.portIs(1, false); });
    add(frameTo(2));
    auto const got = answer();
    EXPECT_EQ(got.outcome, Outcome::dropped);
    EXPECT_EQ(got.state, PacketTracer::State::noEgress);
}

TEST_F(TraceClientTest, AFloodWithoutOtherMembersHasNoEgressPort) {
    add(frameTo(9), "Ethernet4");
    auto const got = answer();
    EXPECT_EQ(got.outcome, Outcome::noEgressPort);
    EXPECT_EQ(got.state, PacketTracer::State::noEgress);
}

TEST_F(TraceClientTest, AnMplsRequestIsRefused) {
    auto const request = client_->request();
    request->frameIs(frameTo(2));
    request->mplsIs(true);
    request->intfIs(*Plexa::IntfId::fromName("Ethernet1"));
    client_->add(request);
    auto const got = answer();
    EXPECT_EQ(got.outcome, Outcome::refused);
    EXPECT_EQ(got.state, PacketTracer::State::notTraceable);
    EXPECT_FALSE(got.injection);
}

TEST_F(TraceClientTest, APacketThatCannotBeBuiltIsRefused) {
    add({});
    EXPECT_EQ(answer().outcome, Outcome::refused);
}

TEST_F(TraceClientTest, AnInterfaceWithoutPortInformationIsAnUnknownIngress) {
    add(frameTo(2), "Ethernet99");
    auto const got = answer();
    EXPECT_EQ(got.outcome, Outcome::unknownIngress);
    EXPECT_EQ(got.state, PacketTracer::State::noEgress);
}

TEST_F(TraceClientTest, OutcomesHaveTextsOfTheirOwn) {
    EXPECT_EQ(text(Outcome::refused), "refused");
    EXPECT_EQ(text(Outcome::unknownIngress), "unknown ingress");
    EXPECT_EQ(text(Outcome::dropped), "dropped");
    EXPECT_EQ(text(Outcome::flooded), "flooded");
    EXPECT_EQ(text(Outcome::forwarded), "forwarded");
    EXPECT_EQ(text(Outcome::noEgressPort), "no egress port");
    EXPECT_EQ(text(Outcome::noAnswer), "no answer");
}

// ---- Withdrawal

TEST_F(TraceClientTest, AnAnswerWithdrawsItsRequest) {
    add();
    answer();
    EXPECT_EQ(client_->waiting(), 0U);
    auto const config = agent_.clientConfigs().entity<PacketTracer::ClientConfig>("test");
    EXPECT_EQ(config->request().size(), 0U);
    EXPECT_EQ(agent_.tracer().pktGenStatus()->status().size(), 0U);
}

TEST_F(TraceClientTest, AClientThatGoesWithdrawsWhatItWaitsFor) {
    add();
    add();
    client_.reset();
    EXPECT_EQ(agent_.tracer().pktGenCfg()->cfg().size(), 0U);
    EXPECT_FALSE(agent_.clientConfigs().entryHas("test"));
    EXPECT_FALSE(agent_.clientStatuses().entryHas("test"));
}

// ---- Lateness

TEST_F(TraceClientTest, ARequestIsNotLateBeforeItsLimit) {
    loseDigests(1, 1);
    add();
    time_ += limit - 1ns;
    EXPECT_FALSE(soon());
}

TEST_F(TraceClientTest, ARequestWhoseDigestIsLostIsLateAtItsLimit) {
    loseDigests(1, 1);
    auto const number = add();
    EXPECT_FALSE(soon());
    time_ += limit;
    auto const got = answer();
    EXPECT_EQ(got.number, number);
    EXPECT_EQ(got.outcome, Outcome::noAnswer);
    EXPECT_FALSE(got.state);
    EXPECT_TRUE(got.injection);
    EXPECT_EQ(client_->waiting(), 0U);
}

TEST_F(TraceClientTest, ARequestWhosePhase0DataIsLostIsLateWithoutInjection) {
    agent_.phase0Data().lostIs();
    add();
    EXPECT_FALSE(soon());
    time_ += limit;
    auto const got = answer();
    EXPECT_EQ(got.outcome, Outcome::noAnswer);
    EXPECT_FALSE(got.injection);
}

TEST_F(TraceClientTest, AStalledCounterHoldsTheOthersUpUntilTheLateOneIsWithdrawn) {
    agent_.chip().generator(0).stalledIs(true);
    loseDigests(1, 1);
    auto const first = add();
    auto const second = add();
    EXPECT_FALSE(soon());
    time_ += limit;
    EXPECT_EQ(answer().number, first);
    auto const got = answer();
    EXPECT_EQ(got.number, second);
    EXPECT_EQ(got.outcome, Outcome::forwarded);
}

TEST_F(TraceClientTest, AStalledCounterKeepsNobodyFromItsOwnAnswer) {
    agent_.chip().generator(0).stalledIs(true);
    add();
    EXPECT_EQ(answer().outcome, Outcome::forwarded);
}

TEST_F(TraceClientTest, TheOthersGoOnWhenOneIsLate) {
    loseDigests(1, 1);
    auto const first = add();
    auto const second = add();
    auto const third = add();
    EXPECT_EQ(answer().number, second);
    EXPECT_EQ(answer().number, third);
    time_ += limit;
    EXPECT_EQ(answer().number, first);
}

TEST_F(TraceClientTest, AnAnswerToAnotherGivesTimeAgain) {
    loseDigests(1, 1);
    add();
    time_ += limit - 1s;
    auto const second = add();
    EXPECT_EQ(answer().number, second);
    time_ += limit - 1ns;
    EXPECT_FALSE(soon());
    time_ += 1ns;
    EXPECT_EQ(answer().outcome, Outcome::noAnswer);
}

TEST_F(TraceClientTest, OnlyTheFirstOfThoseThatAreNotInjectedIsLateAtATime) {
    agent_.phase0Data().lostIs(1, 3);
    auto const first = add();
    auto const second = add();
    EXPECT_FALSE(soon());
    time_ += limit;
    EXPECT_EQ(answer().number, first);
    EXPECT_FALSE(soon());
    time_ += limit - 1ns;
    EXPECT_FALSE(soon());
    time_ += 1ns;
    EXPECT_EQ(answer().number, second);
}

TEST_F(TraceClientTest, SeveralLateOnesGoOneByOneEachAtALimitOfItsOwn) {
    loseDigests(1, 3);
    std::vector<std::uint32_t> const added{add(), add(), add()};
    EXPECT_FALSE(soon());
    for (auto const number : added) {
        time_ += limit;
        EXPECT_EQ(answer().number, number);
        EXPECT_FALSE(soon());
    }
}

TEST_F(TraceClientTest, ALaterAdditionHasALimitOfItsOwn) {
    loseDigests(1, 1);
    add();
    EXPECT_FALSE(soon());
    time_ += limit;
    EXPECT_EQ(answer().outcome, Outcome::noAnswer);
    time_ += 1h;
    loseDigests(1, 1);
    add();
    time_ += limit - 1ns;
    EXPECT_FALSE(soon());
    time_ += 1ns;
    EXPECT_EQ(answer().outcome, Outcome::noAnswer);
}

TEST_F(TraceClientTest, AnAnswerThatIsThereWhenTheLimitPassesIsAnAnswer) {
    add();
    while (agent_.chip().journal().counters().digestMessages == 0) {
        ASSERT_FALSE(client_->poll(0ns));
        agent_.chip().step();
    }
    time_ += 1h;
    EXPECT_EQ(answer().outcome, Outcome::forwarded);
}

TEST_F(TraceClientTest, WhileTheCallerIsBusyNobodyGetsLate) {
    loseDigests(1, 1);
    add();
    add();
    EXPECT_EQ(answer().outcome, Outcome::forwarded);
    time_ += 1h;
    client_->answerDelivered();
    EXPECT_FALSE(soon());
    time_ += limit;
    EXPECT_EQ(answer().outcome, Outcome::noAnswer);
}

TEST_F(TraceClientTest, ADigestThatComesAfterTheWithdrawalAnswersNobody) {
    agent_.chip().faults().digestIs({.fate = SoftChip::DigestFate::held});
    add();
    EXPECT_FALSE(soon());
    time_ += limit;
    EXPECT_EQ(answer().outcome, Outcome::noAnswer);
    agent_.chip().releaseHeld();
    EXPECT_FALSE(soon());
    add();
    EXPECT_EQ(answer().outcome, Outcome::forwarded);
}

}  // namespace
}  // namespace Agent
