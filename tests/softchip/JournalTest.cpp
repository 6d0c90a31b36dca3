#include "softchip/Journal.h"

#include <gtest/gtest.h>

namespace SoftChip {
namespace {

using Kind = JournalEntry::Kind;

JournalEntry call(SdkFunction function, p4_pd_status_t result = 0) {
    JournalEntry entry{.kind = Kind::call, .function = function};
    entry.session = 1;
    entry.result = result;
    return entry;
}

JournalEntry injection(std::uint16_t pktId, std::uint32_t pipe = 0) {
    JournalEntry entry{.kind = Kind::injection};
    entry.pktId = pktId;
    entry.pipe = pipe;
    return entry;
}

std::vector<std::uint64_t> numbers(Journal const& journal) {
    std::vector<std::uint64_t> all;
    for (auto const& entry : journal.entries()) {
        all.push_back(entry.number);
    }
    return all;
}

TEST(Journal, NumbersTheEntriesOfBothWritersInOneRow) {
    Journal journal;
    journal.add(call(SdkFunction::genOnePkt));
    journal.add(injection(1));
    journal.add(call(SdkFunction::getPktCounters));
    EXPECT_EQ(numbers(journal), (std::vector<std::uint64_t>{1, 2, 3}));
    EXPECT_EQ(journal.entries()[1].kind, Kind::injection);
}

TEST(Journal, KeepsTheNewestEntriesOfEachWriterUpToTheLimit) {
    Journal journal(2);
    journal.add(injection(1));
    for (int i = 0; i < 5; ++i) {
        journal.add(call(SdkFunction::genOnePkt));
    }
    EXPECT_EQ(numbers(journal), (std::vector<std::uint64_t>{1, 5, 6}));
}

TEST(Journal, KeepsEverythingWithoutALimit) {
    Journal journal(Journal::unlimited);
    for (std::uint16_t i = 0; i < 20000; ++i) {
        journal.add(injection(i));
    }
    EXPECT_EQ(journal.entries().size(), 20000u);
}

TEST(Journal, CountsWithoutKeepingAnything) {
    Journal journal(0);
    journal.add(call(SdkFunction::genOnePkt));
    journal.add(call(SdkFunction::genOnePkt, 7));
    journal.add(injection(1, 3));
    EXPECT_TRUE(journal.entries().empty());
    auto const counters = journal.counters();
    EXPECT_EQ(counters.callsOf(SdkFunction::genOnePkt), 2u);
    EXPECT_EQ(counters.failuresOf(SdkFunction::genOnePkt), 1u);
    EXPECT_EQ(counters.injected[3], 1u);
}

TEST(Journal, CountsAcknowledgementsWhereverTheyAreKept) {
    Journal journal;
    journal.add(call(SdkFunction::notifyAck, 3));
    EXPECT_EQ(journal.counters().callsOf(SdkFunction::notifyAck), 1u);
    EXPECT_EQ(journal.counters().failuresOf(SdkFunction::notifyAck), 1u);
}

TEST(Journal, CountsEveryKindOfEntry) {
    Journal journal;
    JournalEntry message{.kind = Kind::digestMessage};
    message.entries = 4;
    journal.add(message);
    for (auto const kind : {Kind::tableChange, Kind::digestLost, Kind::digestDoubled,
                            Kind::digestHeld, Kind::digestUndelivered}) {
        journal.add({.kind = kind});
    }
    auto const counters = journal.counters();
    EXPECT_EQ(counters.digestMessages, 1u);
    EXPECT_EQ(counters.digestsSent, 4u);
    EXPECT_EQ(counters.tableChanges, 1u);
    EXPECT_EQ(counters.digestsLost, 1u);
    EXPECT_EQ(counters.digestsDoubled, 1u);
    EXPECT_EQ(counters.digestsHeld, 1u);
    EXPECT_EQ(counters.digestsUndelivered, 1u);
}

TEST(Journal, PrintsACallWithItsArgumentsAndResult) {
    auto entry = call(SdkFunction::genOnePkt, 6);
    entry.pipe = 2;
    entry.genPort = 68;
    entry.portIndex = 5;
    entry.appId = 4;
    entry.pktBytes = 64;
    entry.phase0Bytes = 8;
    entry.pktId = 77;
    EXPECT_EQ(entry.text(),
              "genOnePkt session 1 pipe 2 genPort 68 portIndex 5 appId 4 pktBytes 64 phase0Bytes 8 "
              "pktId 77 -> 6");
}

TEST(Journal, PrintsACounterReadingWithTheCount) {
    auto entry = call(SdkFunction::getPktCounters);
    entry.appId = 4;
    entry.count = 12;
    EXPECT_EQ(entry.text(), "getPktCounters session 1 pipe 0 appId 4 count 12 -> 0");
}

TEST(Journal, PrintsAnInjectionWithItsDecision) {
    auto entry = injection(9, 1);
    entry.portIndex = 3;
    entry.pktBytes = 60;
    entry.decision.egressPort = 130;
    entry.decision.l2Domain = 10;
    entry.decision.step = Step::egressPortUp;
    entry.decision.reason = Reason::forwarded;
    EXPECT_EQ(
        entry.text(),
        "injection pktId 9 pipe 1 portIndex 3 pktBytes 60 egressPort 130 l2Domain 10 routed 0 "
        "copyToCpu 0 drop 0 step egressPortUp reason forwarded");
}

TEST(Journal, PrintsTheOtherKindsInAWordAndANumber) {
    JournalEntry message{.kind = Kind::digestMessage};
    message.entries = 4;
    EXPECT_EQ(message.text(), "digestMessage entries 4");
    JournalEntry lost{.kind = Kind::digestLost};
    lost.pktId = 8;
    EXPECT_EQ(lost.text(), "digestLost pktId 8");
    EXPECT_EQ(JournalEntry{.kind = Kind::tableChange}.text(), "tableChange");
    EXPECT_EQ(call(SdkFunction::notifyAck).text(),
              "pipe_mgr_flow_lrn_notify_ack session 1 handle 0 -> 0");
}

}  // namespace
}  // namespace SoftChip
