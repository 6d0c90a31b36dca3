#include "scriptchip/ScriptChip.h"

#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>

#include "VynSdk/VynSdk.h"
#include "scriptchip/CallLog.h"

namespace ScriptChip {
namespace {

using SdkSeam::SdkFunction;

using Numbers = std::vector<std::uint64_t>;
using Returns = std::vector<p4_pd_status_t>;

class ScriptChipTest : public testing::Test {
  protected:
    // One message as the callback was given it.
    struct Message {
        p4_pd_sess_hdl_t session;
        std::vector<std::uint8_t> target;
        std::vector<std::uint8_t> entries;
        unsigned count;
    };

    static p4_pd_status_t callback(p4_pd_sess_hdl_t session, pipe_flow_lrn_msg_t* message,
                                   void* cookie) {
        auto const* const target = reinterpret_cast<std::uint8_t const*>(&message->dev_tgt);
        auto const* const entries = static_cast<std::uint8_t const*>(message->entries);
        static_cast<std::vector<Message>*>(cookie)->push_back(
            {session,
             {target, target + sizeof message->dev_tgt},
             {entries, entries + message->num_entries * SdkSeam::digestEntryBytes},
             message->num_entries});
        return 42;
    }
    p4_pd_status_t registerCallback(p4_pd_sess_hdl_t session = 3) {
        return pipe_mgr_lrn_digest_notification_register(
            session, chip.device(), SdkSeam::digestHandle, callback, &messages);
    }
    static std::vector<std::uint8_t> bytes(std::span<std::uint8_t const> view) {
        return {view.begin(), view.end()};
    }
    std::uint64_t read(std::uint32_t pipe) {
        std::uint64_t count = 99;
        VynSdk::getPktCounters(1, 0, pipe, 4, count);
        return count;
    }
    Numbers reads(std::uint32_t pipe, std::size_t times) {
        Numbers values;
        for (std::size_t i = 0; i < times; ++i) {
            values.push_back(read(pipe));
        }
        return values;
    }
    Returns disables(std::size_t times) {
        Returns values;
        for (std::size_t i = 0; i < times; ++i) {
            values.push_back(VynSdk::disableAppId(1, 0, 2, 4));
        }
        return values;
    }

    CallLog log;
    ScriptChip chip{&log};
    std::vector<Message> messages;
};

TEST_F(ScriptChipTest, RecordsAnInjectionWithItsArguments) {
    std::uint8_t const pkt[] = {1, 2, 3};
    std::uint8_t const phase0[] = {4, 0};
    EXPECT_EQ(0, VynSdk::genOnePkt(1, 0, 2, 68, 200, 4, pkt, phase0, 9));
    SdkSeam::KeptCall const kept = log.calls().at(0);
    SdkSeam::SdkCall const& call = *kept;
    EXPECT_EQ(SdkFunction::genOnePkt, call.function);
    EXPECT_EQ(1U, call.session);
    EXPECT_EQ(2U, call.pipe);
    EXPECT_EQ(68U, call.genPort);
    EXPECT_EQ(200, call.portIndex);
    EXPECT_EQ(4U, call.appId);
    EXPECT_EQ((std::vector<std::uint8_t>{1, 2, 3}), bytes(call.pkt));
    EXPECT_EQ((std::vector<std::uint8_t>{4, 0}), bytes(call.phase0));
    EXPECT_EQ(9, call.pktId);
}

TEST_F(ScriptChipTest, RecordsTheOtherCallsInTheirOrder) {
    VynSdk::disableAppId(1, 0, 2, 4);
    VynSdk::disablePktGen(1, 0, 2, 68);
    pipe_flow_lrn_msg_t message{};
    pipe_mgr_flow_lrn_notify_ack(1, 77, &message);
    EXPECT_EQ(
        (std::vector<std::string>{"disableAppId", "disablePktGen", "pipe_mgr_flow_lrn_notify_ack"}),
        log.steps());
    EXPECT_EQ(68U, log.calls().at(1)->genPort);
    EXPECT_EQ(77U, log.calls().at(2)->handle);
}

TEST_F(ScriptChipTest, CountersAreZeroAtFirst) {
    EXPECT_EQ((Numbers{0, 0}), reads(3, 2));
}

TEST_F(ScriptChipTest, ACounterStaysAsItWasSet) {
    chip.counterIs(1, 0xffffffffffffffff);
    EXPECT_EQ((Numbers{0xffffffffffffffff, 0xffffffffffffffff}), reads(1, 2));
    EXPECT_EQ(Numbers{0}, reads(0, 1));
}

TEST_F(ScriptChipTest, AListGivesOneValueAReadAndTheLastOneStays) {
    chip.counterIs(1, Numbers{5, 6, 7});
    EXPECT_EQ((Numbers{5, 6, 7, 7}), reads(1, 4));
}

TEST_F(ScriptChipTest, ANewCounterTakesThePlaceOfTheRestOfAList) {
    chip.counterIs(1, Numbers{5, 6, 7});
    read(1);
    chip.counterIs(1, 9);
    EXPECT_EQ((Numbers{9, 9}), reads(1, 2));
}

TEST_F(ScriptChipTest, AFailingReadGivesItsValueAndUsesItUp) {
    chip.counterIs(0, Numbers{5, 6});
    chip.sdkReturnIs(SdkFunction::getPktCounters, -1);
    std::uint64_t count = 99;
    EXPECT_EQ(-1, VynSdk::getPktCounters(1, 0, 0, 4, count));
    EXPECT_EQ(5U, count);
    EXPECT_EQ(5U, log.calls().at(0)->count);
    EXPECT_EQ(-1, log.calls().at(0)->rc);
    EXPECT_EQ(6U, read(0));
}

TEST_F(ScriptChipTest, FailsTheNextCallsAndThenSucceedsAgain) {
    chip.sdkReturnIs(SdkFunction::disableAppId, -7, 2);
    EXPECT_EQ((Returns{-7, -7, 0}), disables(3));
}

TEST_F(ScriptChipTest, FailsAfterSomeSuccesses) {
    chip.sdkReturnIs(SdkFunction::disableAppId, 5, 1, 2);
    EXPECT_EQ((Returns{0, 0, 5, 0}), disables(4));
}

TEST_F(ScriptChipTest, ANewReturnTakesThePlaceOfTheEarlierOne) {
    chip.sdkReturnIs(SdkFunction::disableAppId, 5, 9);
    chip.sdkReturnIs(SdkFunction::disableAppId, 6, 1, 1);
    EXPECT_EQ((Returns{0, 6, 0}), disables(3));
}

TEST_F(ScriptChipTest, ZeroTimesCancelsAReturn) {
    chip.sdkReturnIs(SdkFunction::disableAppId, 5, 9);
    chip.sdkReturnIs(SdkFunction::disableAppId, 5, 0);
    EXPECT_EQ((Returns{0}), disables(1));
}

TEST_F(ScriptChipTest, EachFunctionHasItsOwnReturn) {
    chip.sdkReturnIs(SdkFunction::disablePktGen, 5);
    EXPECT_EQ((Returns{0}), disables(1));
    EXPECT_EQ(5, VynSdk::disablePktGen(1, 0, 2, 68));
}

TEST_F(ScriptChipTest, ADigestCallsTheCallbackWithTheRegisteredSession) {
    ASSERT_EQ(0, registerCallback(3));
    EXPECT_EQ(42, chip.digest({{.pktId = 1}, {.pktId = 2}}));
    ASSERT_EQ(1U, messages.size());
    EXPECT_EQ(3U, messages[0].session);
    EXPECT_EQ(2U, messages[0].count);
    auto const first = SdkSeam::packed({.pktId = 1});
    auto const second = SdkSeam::packed({.pktId = 2});
    std::vector<std::uint8_t> both(first.begin(), first.end());
    both.insert(both.end(), second.begin(), second.end());
    EXPECT_EQ(both, messages[0].entries);
}

TEST_F(ScriptChipTest, AMessageBeginsWithTheDevice) {
    chip.deviceIs(5);
    ASSERT_EQ(0, registerCallback());
    chip.digest({});
    EXPECT_EQ((std::vector<std::uint8_t>{5, 0, 0, 0, 0, 0, 0, 0}), messages.at(0).target);
    EXPECT_EQ(0U, messages.at(0).count);
}

TEST_F(ScriptChipTest, ADigestWithoutACallbackDoesNothing) {
    EXPECT_FALSE(chip.hasCallback());
    EXPECT_FALSE(chip.digest({{.pktId = 1}}));
    EXPECT_TRUE(log.steps().empty());
}

TEST_F(ScriptChipTest, AFailingRegistrationRegistersNobody) {
    chip.sdkReturnIs(SdkFunction::digestRegister, -1);
    EXPECT_EQ(-1, registerCallback());
    EXPECT_FALSE(chip.hasCallback());
}

TEST_F(ScriptChipTest, ADeregistrationRemovesTheCallbackWhateverItReturns) {
    registerCallback();
    chip.sdkReturnIs(SdkFunction::digestDeregister, -1);
    EXPECT_EQ(-1, pipe_mgr_lrn_digest_notification_deregister(3, 0, SdkSeam::digestHandle));
    EXPECT_FALSE(chip.hasCallback());
}

TEST_F(ScriptChipTest, IsFoundUnderItsDeviceAlone) {
    chip.deviceIs(200);
    EXPECT_EQ(0, VynSdk::disableAppId(1, 200, 0, 4));
    EXPECT_EQ(SdkSeam::unknownDevice, VynSdk::disableAppId(1, 0, 0, 4));
    EXPECT_EQ(200, log.calls().at(0)->device);
    EXPECT_EQ(1U, log.calls().size());
}

TEST_F(ScriptChipTest, TwoChipsDoNotShareADevice) {
    EXPECT_THROW(ScriptChip(nullptr, 0), std::logic_error);
    ScriptChip other(nullptr, 1);
    EXPECT_EQ(0, VynSdk::disableAppId(1, 1, 0, 4));
    EXPECT_TRUE(log.steps().empty());
}

TEST_F(ScriptChipTest, ItsPhase0RequestsReachTheListenerWhileItLives) {
    Vanta::Ptr<Phase0Data> phase0;
    {
        ScriptChip other(&log, 1);
        phase0 = other.phase0Data();
        phase0->configIs(*Plexa::IntfId::fromName("Ethernet1"));
    }
    phase0->configIs(*Plexa::IntfId::fromName("Ethernet2"));
    EXPECT_EQ(std::vector<std::string>{"configIs Ethernet1"}, log.steps());
}

}  // namespace
}  // namespace ScriptChip
