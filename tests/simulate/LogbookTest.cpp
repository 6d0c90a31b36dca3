#include "simulate/Logbook.h"

#include <gtest/gtest.h>

#include "Trace/Trace.h"

namespace Simulate {
namespace {

using PacketTracer::ClientStatus;
using PacketTracer::RequestId;
using VynPacketTracer::PktGenConfig;
using VynPacketTracer::PktGenStatus;

RequestId const id("A", 1);

TEST(Logbook, ChangesAreWrittenDownInTheirOrder) {
    Logbook logbook;
    auto const answers = PktGenStatus::PktGenStatusIs();
    auto const answer = answers->statusIs(id);
    answer->pktIdIs(3);
    answer->readyIs(true);
    answers->statusDel(id);
    EXPECT_EQ(logbook.takeLog(),
              (std::vector<std::string>{"status add A/1", "status A/1 pktId 3",
                                        "status A/1 ready true", "status del A/1"}));
    EXPECT_FALSE(logbook.takeBreach());
}

TEST(Logbook, AResultsEntriesAreWrittenDown) {
    Logbook logbook;
    auto const status = ClientStatus::ClientStatusIs();
    auto const result = status->resultIs(id);
    result->egressIntfIs(
        PacketTracer::ResultEntry::fromPhysicalIntf(*Plexa::IntfId::fromName("Ethernet1")));
    EXPECT_EQ(logbook.takeLog().back(), "result A/1 egressIntf Ethernet1,");
    EXPECT_FALSE(logbook.unpublished(nullptr, nullptr, {status.get()}));
}

TEST(Logbook, APublicationWithoutAChangeIsABreach) {
    Logbook logbook;
    auto const answers = PktGenStatus::PktGenStatusIs();
    auto const answer = answers->statusIs(id);
    answer->publisher().publish(VynPacketTracer::PktGenStatusData::readyAttribute);
    auto const breach = logbook.takeBreach();
    ASSERT_TRUE(breach);
    EXPECT_EQ(breach->invariant, "published");
}

TEST(Logbook, AChangeThatItNeverHeardOfIsABreach) {
    auto const jobs = PktGenConfig::PktGenConfigIs();
    jobs->cfgIs(id, Vanta::Bytes{1}, {}, {});
    Logbook logbook;
    auto const breach = logbook.unpublished(jobs.get(), nullptr, {});
    ASSERT_TRUE(breach);
    EXPECT_EQ(breach->invariant, "published");
}

TEST(Logbook, ATraceInTheSilenceIsABreach) {
    Logbook logbook;
    logbook.silenceIs(true);
    Trace::twinlog(Trace::handle("VynPtSm"), 7, "handleClients:");
    auto const breach = logbook.takeBreach();
    ASSERT_TRUE(breach);
    EXPECT_EQ(breach->invariant, "silence");
}

TEST(Logbook, CallsAreForTheWireToo) {
    Logbook logbook;
    logbook.call({.function = SdkSeam::SdkFunction::disableAppId,
                  .device = 1,
                  .session = 2,
                  .pipe = 3,
                  .appId = 4,
                  .rc = 5,
                  .count = 6});
    EXPECT_EQ(logbook.takeLog(),
              std::vector<std::string>{
                  "sdk disableAppId session 2 device 1 pipe 3 appId 4 -> 5 count 0"});
    ASSERT_EQ(logbook.wire().answers.size(), 1U);
    EXPECT_EQ(logbook.wire().answers.front().rc, 5);
}

}  // namespace
}  // namespace Simulate
