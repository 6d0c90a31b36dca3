// Which thread's statements lie where: a ring a thread, and one that the others share.
#include "Trace/RingSeat.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <barrier>
#include <semaphore>
#include <stdexcept>

#include "Trace/RingFixture.h"

namespace Trace {
namespace {

class RingSeatTest : public RingFixture {
  protected:
    RingSeatTest() { ringIs(path_, smallest); }

    void write(std::string_view text, unsigned times = 1) const {
        for (; times > 0; --times) {
            twinlog(handle_, 7, "%s", text);
        }
    }
    void writeInThread(std::string_view text, unsigned times = 1) const {
        std::thread([&] { write(text, times); }).join();
    }

    // The texts of this test's own statements.
    std::vector<std::string> written() const {
        std::vector<std::string> found;
        for (auto& message : messages()) {
            if (message.handle == handle_.name()) {
                found.push_back(std::move(message.text));
            }
        }
        return found;
    }
};

using Texts = std::vector<std::string>;

TEST_F(RingSeatTest, AThreadThatSaysMuchOverwritesNothingOfAnother) {
    write("quiet");
    writeInThread("loud", 10 * smallest);
    auto const found = written();
    ASSERT_EQ(1 + smallest, found.size());
    EXPECT_EQ("quiet", found[0]);
}

TEST_F(RingSeatTest, TheMessagesOfAllThreadsComeInTheOrderOfTime) {
    std::binary_semaphore toOther(0);
    std::binary_semaphore toMe(0);
    std::thread other([&] {
        for (auto const text : {"2", "4"}) {
            toOther.acquire();
            write(text);
            toMe.release();
        }
    });
    for (auto const text : {"1", "3"}) {
        write(text);
        toOther.release();
        toMe.acquire();
    }
    other.join();
    write("5");
    EXPECT_EQ((Texts{"1", "2", "3", "4", "5"}), written());
    EXPECT_EQ(0u, sharedCount());
}

TEST_F(RingSeatTest, WhatAThreadSaidStaysWhenItEnds) {
    writeInThread("last words");
    EXPECT_EQ(Texts{"last words"}, written());
}

TEST_F(RingSeatTest, AThreadThatEndsGivesItsRingBack) {
    for (unsigned thread = 0; thread < 5 * RingFile::ownRings; ++thread) {
        writeInThread(std::to_string(thread));
    }
    EXPECT_EQ(0u, sharedCount());
    EXPECT_EQ(5 * RingFile::ownRings, written().size());
}

TEST_F(RingSeatTest, TheRingThatWasFreeForLongGoesFirst) {
    for (auto const text : {"a", "b", "c"}) {
        writeInThread(text);
    }
    writeInThread("d", smallest);
    auto const found = written();
    EXPECT_EQ((Texts{"b", "c", "d"}), Texts(found.begin(), found.begin() + 3));
}

TEST_F(RingSeatTest, ThreadsBeyondTheRingsShareOne) {
    Crowd const crowd;
    write("mine");
    writeInThread("another's");
    write("mine again");
    EXPECT_EQ((Texts{"mine", "another's", "mine again"}), written());
    EXPECT_EQ(3u, sharedCount());
}

TEST_F(RingSeatTest, AThreadWithoutARingTakesTheNextThatIsGivenBack) {
    {
        Crowd const crowd;
        write("shared");
    }
    write("own");
    EXPECT_EQ(1u, sharedCount());
    EXPECT_EQ((Texts{"shared", "own"}), written());
}

TEST_F(RingSeatTest, ThreadsThatComeAtOnceDoNotTakeTheSameRing) {
    constexpr unsigned count = RingFile::ownRings + 1;
    std::barrier start(count);
    std::barrier end(count);
    auto const comeAndGo = [&] {
        start.arrive_and_wait();
        write("a", 10);
        end.arrive_and_wait();
    };
    for (int round = 0; round < 200; ++round) {
        ringIs(path_, smallest);
        std::array<std::thread, count> threads;
        std::generate(threads.begin(), threads.end(), [&] { return std::thread(comeAndGo); });
        std::for_each(threads.begin(), threads.end(), [](std::thread& thread) { thread.join(); });
        ASSERT_EQ(10 * count, written().size());
        ASSERT_EQ(10u, sharedCount());
    }
}

TEST_F(RingSeatTest, AThreadMovesToANewFileWithItsNextStatement) {
    write("here");
    ringIs(directory_ + "/other", smallest);
    write("there");
    ringDel();
    EXPECT_EQ(Texts{"here"}, written());
    RingReader reader(directory_ + "/other");
    EXPECT_EQ("there", reader.next(RingReader::Unfinished::passOver)->text);
}

// A value whose writer says something itself, or throws.
struct Talkative {
    Handle const* trace;
};
Value traceValue(Talkative const& value) {
    return Value::written(&value, [](void const* object, char*, std::size_t) {
        twinlog(*static_cast<Talkative const*>(object)->trace, 7, "inside");
        return std::size_t{0};
    });
}

struct Unspeakable {};
Value traceValue(Unspeakable const& value) {
    return Value::written(&value, [](void const*, char*, std::size_t) -> std::size_t {
        throw std::runtime_error("unspeakable");
    });
}

TEST_F(RingSeatTest, AStatementInsideAnotherOneIsKeptAsWell) {
    write("before");
    twinlog(handle_, 7, "%s outside %s", 1, Talkative{&handle_});
    write("after");
    EXPECT_EQ((Texts{"before", "1 outside ", "inside", "after"}), written());
}

TEST_F(RingSeatTest, AValueThatThrowsLeavesNoRecordAndHarmsNone) {
    write("before");
    EXPECT_THROW(twinlog(handle_, 7, "%s %s", 1, Unspeakable()), std::runtime_error);
    write("after");
    EXPECT_EQ((Texts{"before", "after"}), written());
    EXPECT_EQ(0u, sharedCount()) << "the thread has its own ring again";
}

// Made before its thread's first statement, and gone after what that one made.
struct LastToGo {
    ~LastToGo() {
        if (trace) {
            twinlog(*trace, 7, "the last");
        }
    }
    Handle const* trace = nullptr;
};

TEST_F(RingSeatTest, WhatAThreadSaysWhileItEndsIsKept) {
    std::thread([this] {
        thread_local LastToGo last;
        last.trace = &handle_;
        write("the first");
    }).join();
    EXPECT_EQ((Texts{"the first", "the last"}), written());
    EXPECT_EQ(1u, sharedCount()) << "a ring that nobody would give back was taken";
}

TEST_F(RingSeatTest, AForkedChildAndItsParentDoNotWriteIntoOneRing) {
    write("parent");
    auto const child = ::fork();
    if (child == 0) {
        write("child", 5);
        std::thread([this] { write("child"); }).join();
        ::_exit(0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(0, status);
    write("parent", 3);
    EXPECT_EQ(6u, sharedCount());
    auto const found = written();
    EXPECT_EQ(6, std::count(found.begin(), found.end(), "child"));
    EXPECT_EQ(4, std::count(found.begin(), found.end(), "parent"));
}

// ---- Records of several lines

TEST_F(RingSeatTest, ARecordMayBeginInTheLastLineOfItsRing) {
    std::string const name(95, 'n');
    write("short", smallest - 1);
    twinlog(handle_, 7, "%s %s", name, name);
    auto const found = written();
    ASSERT_EQ(smallest - 3, found.size()) << "it has the room of four";
    EXPECT_EQ(name + " " + name, found.back());
    EXPECT_EQ("short", found.front());
}

TEST_F(RingSeatTest, LinesThatALongRecordAtTheEndPassedOverAreNotReadAgain) {
    std::string const name(95, 'n');
    write("old", smallest - 1);
    twinlog(handle_, 7, "%s %s", name, name);
    // The oldest line is now the first of three that still hold old records.
    write("new", smallest - 3);
    RingReader reader(path_);
    auto const found = rest(reader);
    ASSERT_EQ(smallest - 3, found.size());
    EXPECT_EQ("new", found.front().text);
    EXPECT_EQ(smallest, reader.lost());
    EXPECT_EQ(0u, reader.damaged());
}

TEST_F(RingSeatTest, RecordsOfAnyLengthAreFoundAgainWhereverTheRingBegins) {
    std::string const name(190, 'n');
    for (unsigned written = 1; written < 500; ++written) {
        auto const half = std::string_view(name).substr(0, written * 37 % 95);
        twinlog(handle_, 7, "%s %s %s", written, half, half);
        RingReader reader(path_);
        auto const found = rest(reader);
        ASSERT_EQ(written, found.size() + reader.lost());
        ASSERT_EQ(0u, reader.damaged());
        ASSERT_LE(std::min(written, unsigned{smallest / 4 - 1}), found.size());
        ASSERT_EQ(0u, found.back().text.find(std::to_string(written) + " "));
    }
}

TEST_F(RingSeatTest, AReaderThatWasOvertakenCountsWhatItMissedAmongRecordsOfAnyLength) {
    std::string const name(95, 'n');
    RingReader reader(path_);
    unsigned written = 0;
    std::uint64_t seen = 0;
    for (unsigned round = 0; round < 50; ++round) {
        for (unsigned more = 0; more < round * 3; ++more) {
            auto const part = std::string_view(name).substr(0, ++written * 37 % 95);
            twinlog(handle_, 7, "%s %s %s", written, part, part);
        }
        reader.poll();
        seen += rest(reader).size();
        ASSERT_EQ(written, seen + reader.lost());
        ASSERT_EQ(0u, reader.damaged());
    }
    EXPECT_LT(0u, reader.lost());
}

}  // namespace
}  // namespace Trace
