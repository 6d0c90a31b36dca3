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

    // Turns a record of the shared ring into one that its writer has not finished.
    void unfinish(std::size_t slot) { patch(sharedRecordAt(slot), Word{0}); }

    // A reader of what this thread wrote.
    struct Mine : RingReader {
        explicit Mine(std::string const& path) : RingReader(path) { handleIs("VynPtSm"); }
    };
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
    auto words = found<std::array<Word, 5>>(recordAt(0));
    Check check(words[0], ticks);
    check.addShape(words[3]);
    check.add(0, words[4]);
    words[1] = check.sum();
    words[2] = ticks;
    patch(recordAt(0), words);
    auto const all = messages();
    ASSERT_EQ(1u, all.size());
    EXPECT_EQ(1'000'000'500, all[0].nanoseconds);
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
    Crowd const crowd;
    write(0, 3);
    unfinish(1);
    Mine reader(path_);
    EXPECT_TRUE(reader.hasWriter());
    EXPECT_EQ("0", reader.next(wait)->text);
    EXPECT_FALSE(reader.next(wait));
    patch(sharedRecordAt(1), Word{smallestShared + 1});
    EXPECT_EQ("1", reader.next(wait)->text);
    EXPECT_EQ("2", reader.next(wait)->text);
    EXPECT_EQ(0u, reader.lost());
}

TEST_F(RingReaderTest, ReadsOtherRingsOnWhileARecordOfTheSharedOneIsUnfinished) {
    ringIs(path_, smallest);
    {
        Crowd const crowd;
        write(0, 1);
        unfinish(0);
    }
    write(1, 2);
    Mine reader(path_);
    EXPECT_EQ("1", reader.next(wait)->text);
    EXPECT_EQ(0u, reader.lost());
}

TEST_F(RingReaderTest, PassesOverAnUnfinishedRecordWhenItIsTold) {
    ringIs(path_, smallest);
    Crowd const crowd;
    write(0, 3);
    unfinish(1);
    Mine reader(path_);
    EXPECT_EQ("0", reader.next(passOver)->text);
    auto const message = reader.next(passOver);
    EXPECT_EQ("2", message->text);
    EXPECT_EQ(1u, message->lostBefore);
}

TEST_F(RingReaderTest, PassesOverWhatADeadWriterDidNotFinish) {
    ringIs(path_, smallest);
    {
        Crowd const crowd;
        write(0, 3);
    }
    ringDel();
    unfinish(1);
    Mine reader(path_);
    EXPECT_FALSE(reader.hasWriter());
    EXPECT_EQ("0", reader.next(wait)->text);
    EXPECT_EQ("2", reader.next(wait)->text);
    EXPECT_EQ(1u, reader.lost());
}

TEST_F(RingReaderTest, PassesOverWhatAWriterLeftHalfARingBehind) {
    ringIs(path_, smallest);
    Crowd const crowd;
    write(0, 3);
    unfinish(1);
    Mine reader(path_);
    EXPECT_EQ("0", reader.next(wait)->text);
    write(3, smallestShared / 2 + 1);
    EXPECT_FALSE(reader.next(wait)) << "half a ring is not yet more than half";
    write(smallestShared / 2 + 1, smallestShared / 2 + 2);
    EXPECT_EQ("2", reader.next(wait)->text);
}

// The writer stores the line behind a record before it stores the next number.
TEST_F(RingReaderTest, MissesNoRecordThatWasBeingFinishedWhenItCame) {
    makeRing(1);
    auto const next = offsetof(Header, own) + offsetof(OwnHead, next);
    auto const finished = found<Word>(next);
    patch(next, Word{finished - 1});
    RingReader reader(path_);
    EXPECT_FALSE(reader.next(wait));
    patch(next, finished);
    EXPECT_TRUE(reader.poll());
    EXPECT_EQ("0", reader.next(wait)->text);
    EXPECT_EQ(0u, reader.lost());
}

TEST_F(RingReaderTest, CountsSharedRecordsThatWereOverwrittenBeforeItCame) {
    ringIs(path_, smallest);
    Crowd const crowd;
    write(0, smallestShared + 5);
    Mine reader(path_);
    EXPECT_EQ(5u, reader.lost());
    EXPECT_EQ("5", reader.next(passOver)->text);
}

TEST_F(RingReaderTest, CountsSharedRecordsThatWereOverwrittenWhileItStoodStill) {
    ringIs(path_, smallest);
    Crowd const crowd;
    write(0, 2);
    Mine reader(path_);
    EXPECT_EQ("0", reader.next(wait)->text);
    write(2, 2 + smallestShared);
    ASSERT_TRUE(reader.poll());
    // It goes on an eighth of the ring behind the oldest record, which is "2".
    EXPECT_EQ("4", reader.next(wait)->text);
    EXPECT_EQ(3u, reader.lost());
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
    EXPECT_EQ("no trace ring: byte 0: expected the letters VYNRING1 or VYNRING2", refusal());
}

TEST_F(RingReaderTest, RefusesAFileThatIsCutOff) {
    makeRing(3);
    std::filesystem::resize_file(path_, 200'000);
    EXPECT_EQ("cut off: expected 283392 bytes, found 200000", refusal());
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
    patch(offsetof(Header, next), Word{15});
    EXPECT_EQ("damaged: byte 64: expected a position behind the first, found 15", refusal());
}

TEST_F(RingReaderTest, RefusesMoreRingsOfThreadsThanThereCanBe) {
    makeRing(3);
    patch(offsetof(Header, ownCount), Word{32});
    EXPECT_EQ("damaged: byte 48: expected at most 31 rings of threads, found 32", refusal());
}

TEST_F(RingReaderTest, RefusesANumberOfLinesThatIsNoPowerOfTwo) {
    makeRing(3);
    patch(offsetof(Header, lineCount), Word{65});
    EXPECT_EQ("damaged: byte 56: expected a power of two as number of lines, found 65", refusal());
}

TEST_F(RingReaderTest, RefusesANumberBeforeAnOwnRingsFirst) {
    makeRing(3);
    patch(offsetof(Header, own) + sizeof(OwnHead) + offsetof(OwnHead, first), Word{7});
    patch(offsetof(Header, own) + sizeof(OwnHead) + offsetof(OwnHead, next), Word{6});
    EXPECT_EQ("damaged: byte 256: expected a number from 7 on, found 6", refusal());
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
    auto const first = found<Word>(recordAt(0));
    for (int round = 0; round < 2000; ++round) {
        auto const line = random() % smallest;
        std::array<Word, 4 + payloadWords> words{};
        std::generate(words.begin(), words.end(), random);
        words[0] = first + line;
        words[3] = (words[3] & ~((Word{1} << formatBits) - 1)) | 1;
        Check check(words[0], words[2]);
        check.addShape(words[3]);
        auto const used = std::min(words[3] >> formatBits & 31, Word{payloadWords});
        for (std::size_t at = 0; at < used; ++at) {
            check.add(at, words[4 + at]);
        }
        words[1] = check.sum();
        patch(recordAt(line), words);
    }
    RingReader reader(path_);
    auto const messages = rest(reader).size();
    EXPECT_EQ(smallest, messages + reader.damaged() + reader.lost());
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
