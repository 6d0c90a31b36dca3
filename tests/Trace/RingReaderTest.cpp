#include "Trace/RingReader.h"

#include <gtest/gtest.h>

#include <bit>
#include <fstream>
#include <random>

#include "Trace/RingFixture.h"

namespace Trace {
namespace {

using namespace RingFile;

class RingReaderTest : public RingFixture {
  protected:
    static constexpr auto wait = RingReader::Unfinished::wait;
    static constexpr auto passOver = RingReader::Unfinished::passOver;

    // A finished ring with `count` records "0", "1", ..., whose writer is gone.
    void makeRing(unsigned count, std::size_t records = smallest) {
        ringIs(path_, records);
        write(0, count);
        ringDel();
    }
    void write(unsigned from, unsigned to) {
        for (auto number = from; number < to; ++number) {
            twinlog(handle_, 7, "%s", number);
        }
    }

    // Turns a record into one that its writer has not finished.
    void unfinish(std::size_t slot) { patch(recordAt(slot), Word{0}); }
};

TEST_F(RingReaderTest, GivesTheMessagesInTheirOrder) {
    makeRing(3);
    EXPECT_EQ((std::vector<std::string>{"0", "1", "2"}), texts());
}

TEST_F(RingReaderTest, GivesNothingOfAnEmptyRing) {
    makeRing(0);
    EXPECT_TRUE(texts().empty());
}

TEST_F(RingReaderTest, GivesTheTimeByTheCalibrationInTheHeader) {
    makeRing(1);
    Word const ticks = 5000;
    patch(offsetof(Header, tickBase), Word{4000});
    patch(offsetof(Header, wallBase), std::int64_t{1'000'000'000});
    patch(offsetof(Header, nanosecondsPerTick), std::bit_cast<Word>(0.5));
    patch(recordAt(0) + offsetof(Record, ticks), ticks);
    int const file = ::open(path_.c_str(), O_RDONLY | O_CLOEXEC);
    std::array<Word, 2> shapeAndValue{};
    ::pread(file, shapeAndValue.data(), sizeof shapeAndValue,
            static_cast<off_t>(recordAt(0) + offsetof(Record, shape)));
    ::close(file);
    Check check(smallest, ticks, shapeAndValue[0]);
    check.add(0, shapeAndValue[1]);
    patch(recordAt(0) + offsetof(Record, check), check.sum());
    auto const found = messages();
    ASSERT_EQ(1u, found.size());
    EXPECT_EQ(1'000'000'500, found[0].nanoseconds);
}

TEST_F(RingReaderTest, GivesTimesInTheOrderOfStatements) {
    makeRing(2);
    auto const found = messages();
    ASSERT_EQ(2u, found.size());
    EXPECT_LE(found[0].nanoseconds, found[1].nanoseconds);
}

TEST_F(RingReaderTest, FiltersByHandle) {
    ringIs(path_);
    twinlog(handle_, 7, "mine");
    twinlog(handle("VynPtClientSm"), 7, "other");
    RingReader reader(path_);
    reader.handleIs("VynPtClientSm");
    auto const found = rest(reader);
    ASSERT_EQ(1u, found.size());
    EXPECT_EQ("other", found[0].text);
}

TEST_F(RingReaderTest, FiltersByLevel) {
    ringIs(path_);
    twinlog(handle_, 1, "one");
    twinlog(handle_, 4, "four");
    twinlog(handle_, 9, "nine");
    RingReader reader(path_);
    reader.levelsIs(LevelSet::range(0, 4));
    auto const found = rest(reader);
    ASSERT_EQ(2u, found.size());
    EXPECT_EQ("four", found[1].text);
}

TEST_F(RingReaderTest, KnowsNothingOfLaterRecordsUntilItPolls) {
    ringIs(path_);
    write(0, 1);
    RingReader reader(path_);
    write(1, 2);
    EXPECT_EQ(1u, rest(reader).size());
    EXPECT_TRUE(reader.poll());
    EXPECT_EQ("1", rest(reader).at(0).text);
    EXPECT_FALSE(reader.poll());
}

TEST_F(RingReaderTest, FollowsTheWriterRoundTheRing) {
    ringIs(path_, smallest);
    RingReader reader(path_);
    unsigned expected = 0;
    for (unsigned round = 0; round < 10; ++round) {
        write(expected, expected + 50);
        ASSERT_TRUE(reader.poll());
        for (auto const& message : rest(reader)) {
            EXPECT_EQ(std::to_string(expected++), message.text);
        }
    }
    EXPECT_EQ(500u, expected);
    EXPECT_EQ(0u, reader.lost());
}

TEST_F(RingReaderTest, CountsRecordsThatWereOverwrittenBeforeItCame) {
    makeRing(smallest + 36);
    RingReader reader(path_);
    EXPECT_EQ(36u, reader.lost());
    auto const first = reader.next(passOver);
    ASSERT_TRUE(first);
    EXPECT_EQ("36", first->text);
    EXPECT_EQ(36u, first->lostBefore);
    EXPECT_EQ(0u, reader.next(passOver)->lostBefore);
}

TEST_F(RingReaderTest, CountsRecordsThatWereOverwrittenWhileItStoodStill) {
    ringIs(path_, smallest);
    write(0, 10);
    RingReader reader(path_);
    EXPECT_EQ("0", reader.next(wait)->text);
    write(10, 10 + smallest);
    ASSERT_TRUE(reader.poll());
    auto const message = reader.next(wait);
    ASSERT_TRUE(message);
    // It goes on an eighth of the ring behind the oldest record, which is "10".
    EXPECT_EQ("18", message->text);
    EXPECT_EQ(17u, message->lostBefore);
    EXPECT_EQ(17u, reader.lost());
}

TEST_F(RingReaderTest, WaitsForARecordThatALivingWriterHasNotFinished) {
    ringIs(path_, smallest);
    write(0, 3);
    unfinish(1);
    RingReader reader(path_);
    EXPECT_TRUE(reader.hasWriter());
    EXPECT_EQ("0", reader.next(wait)->text);
    EXPECT_FALSE(reader.next(wait));
    patch(recordAt(1), Word{smallest + 1});
    EXPECT_EQ("1", reader.next(wait)->text);
    EXPECT_EQ("2", reader.next(wait)->text);
    EXPECT_EQ(0u, reader.lost());
}

TEST_F(RingReaderTest, PassesOverAnUnfinishedRecordWhenItIsTold) {
    ringIs(path_, smallest);
    write(0, 3);
    unfinish(1);
    RingReader reader(path_);
    EXPECT_EQ("0", reader.next(passOver)->text);
    auto const message = reader.next(passOver);
    EXPECT_EQ("2", message->text);
    EXPECT_EQ(1u, message->lostBefore);
}

TEST_F(RingReaderTest, PassesOverWhatADeadWriterDidNotFinish) {
    makeRing(3);
    unfinish(1);
    RingReader reader(path_);
    EXPECT_FALSE(reader.hasWriter());
    EXPECT_EQ("0", reader.next(wait)->text);
    EXPECT_EQ("2", reader.next(wait)->text);
    EXPECT_EQ(1u, reader.lost());
}

TEST_F(RingReaderTest, PassesOverWhatAWriterLeftHalfARingBehind) {
    ringIs(path_, smallest);
    write(0, 3);
    unfinish(1);
    RingReader reader(path_);
    EXPECT_EQ("0", reader.next(wait)->text);
    write(3, smallest / 2 + 1);
    EXPECT_FALSE(reader.next(wait)) << "half a ring is not yet more than half";
    write(smallest / 2 + 1, smallest / 2 + 2);
    EXPECT_EQ("2", reader.next(wait)->text);
}

TEST_F(RingReaderTest, NoticesThatTheRingWasReplaced) {
    makeRing(1);
    RingReader reader(path_);
    EXPECT_FALSE(reader.isReplaced());
    ringIs(path_);
    EXPECT_TRUE(reader.isReplaced());
    EXPECT_EQ("0", reader.next(wait)->text) << "the old ring can still be read";
}

TEST_F(RingReaderTest, RefusesAFileThatIsNotThere) {
    EXPECT_EQ("cannot be opened: No such file or directory", refusal());
}

TEST_F(RingReaderTest, RefusesADirectory) {
    std::filesystem::create_directory(path_);
    EXPECT_NE("", refusal());
}

TEST_F(RingReaderTest, RefusesAnEmptyFile) {
    std::ofstream file(path_);
    EXPECT_EQ("no trace ring: expected a header of 4096 bytes, found a file of 0", refusal());
}

TEST_F(RingReaderTest, RefusesAFileOfAnotherKind) {
    std::ofstream(path_) << std::string(100'000, 'x');
    EXPECT_EQ("no trace ring: byte 0: expected the letters VYNRING1", refusal());
}

TEST_F(RingReaderTest, RefusesAFileThatIsCutOff) {
    makeRing(3);
    std::filesystem::resize_file(path_, 200'000);
    EXPECT_EQ("cut off: expected 282624 bytes, found 200000", refusal());
}

TEST_F(RingReaderTest, RefusesANumberOfRecordsThatIsNoPowerOfTwo) {
    makeRing(3);
    patch(offsetof(Header, recordCount), Word{65});
    EXPECT_EQ("damaged: byte 8: expected a power of two as number of records, found 65", refusal());
}

TEST_F(RingReaderTest, RefusesASizeThatOverflows) {
    makeRing(3);
    patch(offsetof(Header, recordCount), Word{1} << 63);
    EXPECT_NE("", refusal());
}

TEST_F(RingReaderTest, RefusesANumberOfFormatsOutOfRange) {
    makeRing(3);
    patch(offsetof(Header, formatCount), Word{0});
    EXPECT_EQ("damaged: byte 16: expected 1 to 2048 formats, found 0", refusal());
    patch(offsetof(Header, formatCount), ~Word{0});
    EXPECT_NE("", refusal());
}

TEST_F(RingReaderTest, RefusesAPositionBeforeTheFirst) {
    makeRing(3);
    patch(offsetof(Header, next), Word{63});
    EXPECT_EQ("damaged: byte 64: expected a position behind the first, found 63", refusal());
}

TEST_F(RingReaderTest, ReportsAFileThatShrankWhileItWasRead) {
    makeRing(3);
    RingReader reader(path_);
    std::filesystem::resize_file(path_, 4096);
    EXPECT_THROW(reader.poll(), RingError);
}

TEST_F(RingReaderTest, CountsARecordOfMixedWordsAsDamaged) {
    makeRing(3);
    patch(recordAt(1) + offsetof(Record, payload), Word{4711});
    EXPECT_EQ((std::vector<std::string>{"0", "2"}), texts());
    RingReader reader(path_);
    rest(reader);
    EXPECT_EQ(1u, reader.damaged());
}

TEST_F(RingReaderTest, CountsARecordOfADamagedFormatAsDamaged) {
    makeRing(3);
    patch(sizeof(Header) + sizeof(FormatEntry), ~Word{0});
    RingReader reader(path_);
    EXPECT_TRUE(rest(reader).empty());
    EXPECT_EQ(3u, reader.damaged());
}

TEST_F(RingReaderTest, TakesArbitraryBytesBehindAnIntactHeaderWithoutHarm) {
    std::mt19937_64 random(7);
    for (int round = 0; round < 50; ++round) {
        makeRing(smallest);
        for (int change = 0; change < 200; ++change) {
            auto const room = std::filesystem::file_size(path_) - offsetof(Header, tickBase) - 8;
            patch(offsetof(Header, tickBase) + random() % room, random() >> random() % 64);
        }
        try {
            RingReader reader(path_);
            EXPECT_LE(rest(reader).size(), smallest);
        } catch (RingError const&) {
        }
    }
}

TEST_F(RingReaderTest, TakesValuesThatMakeNoSenseWithoutHarm) {
    std::mt19937_64 random(11);
    makeRing(smallest);
    for (int round = 0; round < 2000; ++round) {
        auto const slot = random() % smallest;
        std::array<Word, 4 + payloadWords> words{};
        std::generate(words.begin(), words.end(), random);
        words[0] = smallest + slot;
        words[3] = (words[3] & ~((Word{1} << formatBits) - 1)) | 1;
        Check check(words[0], words[2], words[3]);
        auto const used = std::min(words[3] >> formatBits & 31, Word{payloadWords});
        for (std::size_t at = 0; at < used; ++at) {
            check.add(at, words[4 + at]);
        }
        words[1] = check.sum();
        patch(recordAt(slot), words);
    }
    RingReader reader(path_);
    EXPECT_EQ(smallest, rest(reader).size() + reader.damaged());
}

TEST_F(RingReaderTest, TakesAnyCalibrationWithoutHarm) {
    makeRing(1);
    patch(offsetof(Header, wallBase), std::int64_t{INT64_MAX});
    for (auto const bits :
         {Word{0x7ff0000000000000}, Word{0x7ff8000000000000}, ~Word{0}, Word{1}}) {
        patch(offsetof(Header, nanosecondsPerTick), bits);
        EXPECT_EQ(1u, messages().size());
    }
}

}  // namespace
}  // namespace Trace
