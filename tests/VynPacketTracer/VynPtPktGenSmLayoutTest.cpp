// Digest layouts other than the one that the chip's program has.
#include <unistd.h>

#include <array>
#include <functional>
#include <map>

#include "VynPacketTracer/EngineFixture.h"
#include "VynPacketTracer/VynPtPktGenSm.h"

namespace VynPacketTracer {
namespace {

// The program's layout, but for an entry size and fields that lie somewhere else.
class BentLayout final : public VyPd::VyPdIntf {
  public:
    using Place = std::function<std::uint8_t const*(std::uint8_t const* entry)>;

    std::uint32_t digestEntrySize(std::string_view) const override { return entrySize; }
    std::uint8_t const* digestEntryField(std::uint8_t const* entry, std::string_view digest,
                                         std::string_view field,
                                         std::uint32_t& size) const override {
        asked.emplace_back(field);
        auto const* const found = straight_->digestEntryField(entry, digest, field, size);
        auto const moved = places.find(field);
        return moved == places.end() ? found : moved->second(entry);
    }

    std::uint32_t entrySize = 9;
    std::map<std::string_view, Place> places;
    mutable Lines asked;

    // From now on this width is reported for a field.
    void fieldSizeIs(std::string_view field, std::uint32_t size) {
        straight_->fieldSizeIs(field, size);
    }

  private:
    Vanta::Ptr<SdkSeam::DigestLayout> const straight_ = SdkSeam::DigestLayout::DigestLayoutIs();
};

class LayoutTest : public EngineTest {
  protected:
    // An engine with this layout, and an answer that waits for the digest of packet id 7.
    void startBent() {
        engine = pktGenSmFactory(config, chip.phase0Data(), status, 1, chip.device(), true,
                                 chip.learnQuanta(), layout, loop);
        turn();
        answered(1, 7);
    }
    void answered(std::uint32_t number, std::uint16_t pktId) {
        status->statusIs(id("noc", number))->pktIdIs(pktId);
        recorder.take();
    }
    Lines processed(std::initializer_list<SdkSeam::TraceDigest> entries) {
        chip.digest(entries);
        return turned();
    }
    // What is read of a message that says that it has so many entries, and has none.
    Lines readOf(std::uint8_t entries) {
        std::array<std::uint8_t, 10> header{};
        header[8] = entries;
        EXPECT_EQ(::write(engine->socketPairWriteDesc(), header.data(), header.size()), 10);
        return turned();
    }
    static std::string processing(unsigned entries) {
        return engineTrace(7, "processPktTracerDigest:Processing pktTracer learning digest with " +
                                  std::to_string(entries) + " entries");
    }
    static std::string pktId(unsigned number) {
        return engineTrace(7, "processPktTracerDigest:PktId:" + std::to_string(number));
    }
    static std::string wrongSize(std::string const& message) {
        return engineTrace(1, "processPktTracerDigest:" + message);
    }

    Vanta::Ptr<BentLayout> const layout = Vanta::makeNode<BentLayout>();
};

std::string const u8 = "size == sizeof( U8 )";
std::string const u16 = "size == sizeof( U16 )";

// ---- The size of an entry

TEST_F(LayoutTest, EntriesOfNoBytesArePassedOver) {
    layout->entrySize = 0;
    startBent();
    answered(2, 0);
    EXPECT_EQ(processed({{.pktId = 7}, {.pktId = 8}}), (Lines{processing(2)}));
    EXPECT_EQ(layout->asked, Lines{});
}

TEST_F(LayoutTest, EntriesLargerThanTheBufferAreRefused) {
    layout->entrySize = 0xffffffff;
    startBent();
    EXPECT_EQ(readOf(1),
              (Lines{engineTrace(1, "processPktTracerDigest:Too many entries:1 bufSize:4096")}));
}

TEST_F(LayoutTest, EntriesWhoseSizeWrapsIn32BitsAreRefused) {
    layout->entrySize = 0x80000001;
    startBent();
    EXPECT_EQ(readOf(2),
              (Lines{engineTrace(1, "processPktTracerDigest:Too many entries:2 bufSize:4096")}));
}

TEST_F(LayoutTest, OfAnEntryThatIsLongerThanItsFieldsTheNextOneBeginsBehindIt) {
    layout->entrySize = 18;
    startBent();
    answered(2, 9);
    // Two entries of 18 bytes each.
    std::vector<std::uint8_t> message(10 + 36);
    message[8] = 2;
    message[10] = 7;
    message[28] = 9;
    ASSERT_EQ(::write(engine->socketPairWriteDesc(), message.data(), message.size()), 46);
    EXPECT_EQ(beginning("status ready", turned()),
              (Lines{"status ready noc/1 true", "status ready noc/2 true"}));
}

// ---- Fields that do not lie inside their entry

struct Field {
    std::string_view name;
    std::string shortName;
    unsigned width;
};

class FieldPlaceTest : public LayoutTest, public testing::WithParamInterface<Field> {
  protected:
    // That a field which lies so ends the process, `got` bytes of it being there.
    void expectTooLittle(BentLayout::Place const& place, unsigned got) {
        Field const& field = GetParam();
        layout->places[field.name] = place;
        startBent();
        chip.digest({{.pktId = 7}, {.pktId = 7}});
        Lines lines{processing(2)};
        if (field.name != "pktGen_pktId") {
            lines.push_back(pktId(7));
        }
        lines.push_back(wrongSize(field.shortName + " wrong size.  Expected:" +
                                  std::to_string(field.width) + " got:" + std::to_string(got)));
        expectEnd([&] { turn(); }, lines, "assert", field.width == 2 ? u16 : u8);
    }
};

TEST_P(FieldPlaceTest, BehindTheEntryEndsTheProcess) {
    expectTooLittle([](std::uint8_t const* entry) { return entry + 9; }, 0);
}

TEST_P(FieldPlaceTest, BehindWhatWasReceivedEndsTheProcess) {
    expectTooLittle([](std::uint8_t const* entry) { return entry + 4000; }, 0);
}

TEST_P(FieldPlaceTest, AcrossTheEndOfTheEntryEndsTheProcess) {
    // A flag of one byte does not lie across anything: it lies behind.
    unsigned const width = GetParam().width;
    expectTooLittle([width](std::uint8_t const* entry) { return entry + 10 - width; }, width - 1);
}

INSTANTIATE_TEST_SUITE_P(
    Fields, FieldPlaceTest,
    testing::Values(Field{"pktGen_pktId", "pktId", 2},
                    Field{"pktTracerMd_copy_to_cpu", "copyToCpu", 1},
                    Field{"egrMd_egrL2Domain", "egrL2Domain", 2},
                    Field{"pktTracerMd_ucast_egress_port", "ucast_egress_port", 2},
                    Field{"egrMd_routed", "egrMd_routed", 1},
                    Field{"ig_intr_md_for_dprsr_drop_ctl", "ig_intr_md_for_dprsr_drop_ctl", 1}),
    [](auto const& field) { return std::string(field.param.name); });

class SecondEntryTest : public LayoutTest {
  protected:
    // The second entry's packet id lies this many bytes from the entry's beginning.
    void expectEndOfSecond(std::ptrdiff_t offset, std::string const& got) {
        layout->places["pktGen_pktId"] = [first = true, offset](std::uint8_t const* entry) mutable {
            return std::exchange(first, false) ? entry : entry + offset;
        };
        startBent();
        chip.digest({{.pktId = 8}, {.pktId = 8}});
        expectEnd([&] { turn(); },
                  {processing(2), pktId(8), wrongSize("pktId wrong size.  Expected:2 got:" + got)},
                  "assert", u16);
    }
};

TEST_F(SecondEntryTest, WithAFieldInFrontOfItEndsTheProcess) {
    expectEndOfSecond(-2, "0");
}

TEST_F(SecondEntryTest, WithAFieldAcrossItsBeginningEndsTheProcess) {
    expectEndOfSecond(-1, "1");
}

TEST_F(LayoutTest, AWidthThatIsWrongIsNamedAheadOfAPlaceThatIs) {
    layout->places["egrMd_egrL2Domain"] = [](std::uint8_t const* entry) { return entry + 9; };
    layout->fieldSizeIs("egrMd_egrL2Domain", 4);
    startBent();
    chip.digest({{.pktId = 7}});
    expectEnd([&] { turn(); },
              {processing(1), pktId(7), wrongSize("egrL2Domain wrong size.  Expected:2 got:4")},
              "assert", u16);
}

TEST_F(LayoutTest, FieldsThatFillTheEntryToItsEndsAreTaken) {
    layout->places["egrMd_egrL2Domain"] = [](std::uint8_t const* entry) { return entry + 7; };
    startBent();
    EXPECT_EQ(
        beginning("status egrL2Domain", processed({{.pktId = 7, .routed = 0x34, .dropCtl = 0x12}})),
        (Lines{"status egrL2Domain noc/1 4660"}));
}

TEST_F(LayoutTest, AFieldOutsideTheBufferIsTheLayoutsOwnAffair) {
    static constexpr std::uint8_t decoded[] = {7, 0};
    layout->places["pktGen_pktId"] = [](std::uint8_t const*) { return decoded; };
    startBent();
    EXPECT_EQ(beginning("status ready", processed({{.pktId = 99}})),
              (Lines{"status ready noc/1 true"}));
}

// ---- How often a field is asked for

Lines const ofAMatch{"pktTracerMd_copy_to_cpu", "egrMd_egrL2Domain",
                     "pktTracerMd_ucast_egress_port", "egrMd_routed",
                     "ig_intr_md_for_dprsr_drop_ctl"};

TEST_F(LayoutTest, TheFieldsOfAnEntryAreReadOnceWhateverTheNumberOfItsMatches) {
    startBent();
    answered(2, 7);
    answered(3, 7);
    EXPECT_EQ(beginning("status ready", processed({{.pktId = 7}})).size(), 3u);
    EXPECT_EQ(layout->asked, Lines{"pktGen_pktId"} + ofAMatch);
}

TEST_F(LayoutTest, TheFieldsOfEachEntryAreItsOwn) {
    startBent();
    EXPECT_EQ(beginning("status egrL2Domain",
                        processed({{.pktId = 7, .l2Domain = 10}, {.pktId = 7, .l2Domain = 11}})),
              (Lines{"status egrL2Domain noc/1 10", "status egrL2Domain noc/1 11"}));
    EXPECT_EQ(layout->asked, Lines{"pktGen_pktId"} + ofAMatch + Lines{"pktGen_pktId"} + ofAMatch);
}

TEST_F(LayoutTest, OfAnEntryWithoutAMatchThePacketIdAloneIsRead) {
    startBent();
    processed({{.pktId = 8}});
    EXPECT_EQ(layout->asked, (Lines{"pktGen_pktId"}));
}

}  // namespace
}  // namespace VynPacketTracer
