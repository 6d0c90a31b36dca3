#include <functional>
#include <sstream>
#include <type_traits>

#include "Kel/Error.h"
#include "Trace/Trace.h"
#include "VynPacketTracer/Fixture.h"
#include "VynPacketTracer/VynPtTypes.h"

namespace VynPacketTracer {
namespace {

TEST(PktGenStateTest, HasSevenNamesInTheFixedOrder) {
    std::string names;
    for (unsigned number = 0; number < 7; ++number) {
        names += std::string(stringValue(PktGenStateInstance(number)).view()) + " ";
    }
    EXPECT_EQ(names, "init idle waitPhase0Data phase0DataReady waitPktSent reset error ");
}

TEST(PktGenStateTest, StringValueOfFiveIsReset) {
    EXPECT_EQ(stringValue(static_cast<PktGenState>(5)), "reset");
}

TEST(PktGenStateTest, InstanceOfTheNameWaitPktSentIsFour) {
    EXPECT_EQ(static_cast<unsigned>(PktGenStateInstance("waitPktSent")), 4u);
}

TEST(PktGenStateTest, IsAnUnsignedByte) {
    static_assert(std::is_same_v<std::underlying_type_t<PktGenState>, std::uint8_t>);
}

TEST(PktGenStateTest, EveryNameGivesItsStateBack) {
    for (unsigned number = 0; number < 7; ++number) {
        PktGenState const state = PktGenStateInstance(number);
        EXPECT_EQ(PktGenStateInstance(stringValue(state)), state);
    }
}

TEST(PktGenStateTest, NumberSevenIsARangeError) {
    EXPECT_THROW(PktGenStateInstance(7), Kel::RangeError);
}

TEST(PktGenStateTest, ThereIsNoStateNamedReady) {
    EXPECT_THROW(PktGenStateInstance("ready"), Kel::RangeError);
}

TEST(PktGenStateTest, ANameInAnotherCaseIsARangeError) {
    EXPECT_THROW(PktGenStateInstance("Idle"), Kel::RangeError);
}

TEST(PktGenStateTest, TheEmptyNameIsARangeError) {
    EXPECT_THROW(PktGenStateInstance(""), Kel::RangeError);
}

TEST(PktGenStateTest, PrintsItsName) {
    std::ostringstream out;
    out << PktGenState::phase0DataReady;
    EXPECT_EQ(out.str(), "phase0DataReady");
}

TEST(PktGenStateTest, TracesPrintItsName) {
    Recorder recorder;
    Trace::twinlog(Trace::handle("VynPtTypesTest"), 7, "state:%s", PktGenState::waitPktSent);
    EXPECT_EQ(recorder.take(), (Lines{"VynPtTypesTest/7 state:waitPktSent"}));
}

// What sequenceToValue leaves of a text, behind the state that it found.
std::string sequence(std::string const& text) {
    Vanta::CharRange range{text.data(), text.data() + text.size()};
    PktGenState state = PktGenState::error;
    bool const found = sequenceToValue(range, &state);
    return (found ? std::string(stringValue(state).view()) : "none") + "|" +
           std::string(range.begin, range.end);
}

TEST(PktGenStateSequenceTest, TakesANameAtTheRangesEnd) {
    EXPECT_EQ(sequence("idle"), "idle|");
}

TEST(PktGenStateSequenceTest, TakesANameBeforeACharacterThatIsNoLetterOrDigit) {
    EXPECT_EQ(sequence("reset,idle"), "reset|,idle");
    EXPECT_EQ(sequence("reset_1"), "reset|_1");
    EXPECT_EQ(sequence("reset/1"), "reset|/1");
}

TEST(PktGenStateSequenceTest, TakesNoPartOfALongerWord) {
    EXPECT_EQ(sequence("idler"), "none|idler");
    EXPECT_EQ(sequence("idle2"), "none|idle2");
    EXPECT_EQ(sequence("idlez"), "none|idlez");
    EXPECT_EQ(sequence("waitPkt"), "none|waitPkt");
}

TEST(PktGenStateSequenceTest, AnotherCaseIsNoMatch) {
    EXPECT_EQ(sequence("IDLE"), "none|IDLE");
}

TEST(PktGenStateSequenceTest, SkipsNothing) {
    EXPECT_EQ(sequence(" idle"), "none| idle");
    EXPECT_EQ(sequence(""), "none|");
}

TEST(PktGenStateSequenceTest, LeavesTheStateAloneWithoutAMatch) {
    char const text[] = "nothing";
    Vanta::CharRange range{text, text + 7};
    PktGenState state = PktGenState::reset;
    EXPECT_FALSE(sequenceToValue(range, &state));
    EXPECT_EQ(state, PktGenState::reset);
}

TEST(PktGenStateSequenceTest, NeedsAStateToSet) {
    char const text[] = "idle";
    Vanta::CharRange range{text, text + 4};
    EXPECT_EXIT(sequenceToValue(range, nullptr), testing::KilledBySignal(SIGABRT),
                "assertion failed: state != nullptr");
}

// The type, attribute and text of the range error that something raises.
std::string rangeError(std::function<void()> const& action) {
    try {
        action();
    } catch (Kel::RangeError const& error) {
        return error.typeName() + " | " + error.attribute() + " | " + error.what();
    }
    return "none";
}

TEST(PktGenStateTest, ANumberWithoutAStateIsNamedInTheError) {
    EXPECT_EQ(rangeError([] { PktGenStateInstance(7); }),
              "PktGenState | value | PktGenState has no value 7");
}

TEST(PktGenStateTest, ANameWithoutAStateIsNamedInTheError) {
    EXPECT_EQ(rangeError([] { PktGenStateInstance("busy"); }),
              "PktGenState | value | PktGenState has no value named busy");
}

}  // namespace
}  // namespace VynPacketTracer
