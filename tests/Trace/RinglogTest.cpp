#include "Trace/Ringlog.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <csignal>
#include <cstring>
#include <fstream>
#include <thread>

#include "Trace/Captured.h"
#include "Trace/RingFixture.h"

namespace Trace {
namespace {

using Ringlog = RingFixture;

// A value whose writer counts its calls.
struct Counted {
    mutable int timesWritten = 0;
};

Value traceValue(Counted const& counted) {
    return Value::written(&counted, [](void const* object, char* to, std::size_t) {
        ++static_cast<Counted const*>(object)->timesWritten;
        std::memcpy(to, "Ethernet1/2", 11);
        return std::size_t{11};
    });
}

TEST_F(Ringlog, KeepsHandleLevelAndTextOfEveryStatement) {
    ringIs(path_);
    twinlog(handle_, 7, "handleClient:client %s", "leaf");
    twinlog(handle("VynPtPktGenSm"), 9, "checkPktCnt:cnt:%s", 3);
    auto const found = messages();
    ASSERT_EQ(2u, found.size());
    EXPECT_EQ("VynPtSm", found[0].handle);
    EXPECT_EQ(7u, found[0].level);
    EXPECT_EQ("handleClient:client leaf", found[0].text);
    EXPECT_EQ("VynPtPktGenSm", found[1].handle);
    EXPECT_EQ(9u, found[1].level);
    EXPECT_EQ("checkPktCnt:cnt:3", found[1].text);
}

TEST_F(Ringlog, KeepsStatementsWhoseTextLevelIsDisabled) {
    Captured captured;
    handle_.textLevelsIs(LevelSet());
    ringIs(path_);
    twinlog(handle_, 9, "a");
    EXPECT_EQ(std::vector<std::string>{"a"}, texts());
    EXPECT_TRUE(captured.writes().empty());
}

TEST_F(Ringlog, KeepsValuesOfEveryKind) {
    ringIs(path_);
    twinlog(handle_, 1, "%s %s %s %s %s %s", true, false, std::int64_t{-1}, ~std::uint64_t{0},
            "text", Counted());
    EXPECT_EQ(std::vector<std::string>{"true false -1 18446744073709551615 text Ethernet1/2"},
              texts());
}

TEST_F(Ringlog, KeepsTwelveValues) {
    ringIs(path_);
    twinlog(handle_, 1, "%s%s%s%s%s%s%s%s%s%s%s%s", 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12);
    EXPECT_EQ(std::vector<std::string>{"123456789101112"}, texts());
}

TEST_F(Ringlog, KeepsAValueThatContainsAPlaceAsItIs) {
    ringIs(path_);
    twinlog(handle_, 1, "%s then %s", "%s", 5);
    EXPECT_EQ(std::vector<std::string>{"%s then 5"}, texts());
}

TEST_F(Ringlog, CutsALongTextAndSaysSo) {
    ringIs(path_);
    twinlog(handle_, 1, "%s", std::string(95, 'x'));
    twinlog(handle_, 1, "%s", std::string(96, 'y'));
    EXPECT_EQ((std::vector<std::string>{std::string(95, 'x'), std::string(95, 'y') + "..."}),
              texts());
}

TEST_F(Ringlog, CutsATextBetweenCharacters) {
    ringIs(path_);
    twinlog(handle_, 1, "%s", std::string(94, 'x') + "\u00e9");
    EXPECT_EQ(std::vector<std::string>{std::string(94, 'x') + "..."}, texts());
}

TEST_F(Ringlog, LeavesEveryValueSomeRoomWhenTextsFillARecord) {
    ringIs(path_);
    std::string const name(200, 'n');
    twinlog(handle_, 1, "%s %s %s %s %s %s %s %s %s %s %s %s", name, name, name, name, name, name,
            name, name, name, name, name, 4711);
    std::string const full = std::string(95, 'n') + "... ";
    std::string const shorter = std::string(47, 'n') + "... ";
    std::string expected = full + shorter;
    for (int text = 2; text < 11; ++text) {
        expected += "nnnnnnn... ";
    }
    EXPECT_EQ(std::vector<std::string>{expected + "4711"}, texts());
}

TEST_F(Ringlog, FormatsNoTextOfARecord) {
    ringIs(path_);
    Counted counted;
    twinlog(handle_, 7, "%s", counted);
    EXPECT_EQ(1, counted.timesWritten) << "only the value itself is written down";
}

TEST_F(Ringlog, KeepsTheNewestRecordsWhenItWraps) {
    ringIs(path_, smallest);
    for (unsigned number = 0; number < 3 * smallest + 5; ++number) {
        twinlog(handle_, 7, "%s", number);
    }
    auto const found = texts();
    ASSERT_EQ(smallest, found.size());
    EXPECT_EQ(std::to_string(2 * smallest + 5), found.front());
    EXPECT_EQ(std::to_string(3 * smallest + 4), found.back());
}

std::size_t sizeWith(std::size_t lines) {
    using namespace RingFile;
    return sizeOf(lines / mostLines, formatCount, ownRings, lines);
}

TEST_F(Ringlog, HasAFixedSize) {
    ringIs(path_, smallest);
    auto const before = std::filesystem::file_size(path_);
    for (unsigned number = 0; number < 3 * smallest; ++number) {
        twinlog(handle_, 7, "%s", number);
    }
    EXPECT_EQ(before, std::filesystem::file_size(path_));
    EXPECT_EQ(sizeWith(smallest), before);
}

TEST_F(Ringlog, RoundsItsNumberOfRecordsUp) {
    ringIs(path_, 65);
    EXPECT_EQ(sizeWith(128), std::filesystem::file_size(path_));
    ringIs(path_, 1);
    EXPECT_EQ(sizeWith(64), std::filesystem::file_size(path_));
}

TEST_F(Ringlog, StartsFreshInAnExistingRing) {
    ringIs(path_);
    twinlog(handle_, 7, "old");
    ringIs(path_);
    twinlog(handle_, 7, "new");
    EXPECT_EQ(std::vector<std::string>{"new"}, texts());
}

TEST_F(Ringlog, CanMoveToAnotherFile) {
    ringIs(path_);
    twinlog(handle_, 7, "here");
    ringIs(directory_ + "/other");
    twinlog(handle_, 7, "there");
    EXPECT_EQ(std::vector<std::string>{"here"}, texts());
}

TEST_F(Ringlog, KeepsNothingAfterItIsTakenAway) {
    ringIs(path_);
    twinlog(handle_, 7, "before");
    ringDel();
    EXPECT_FALSE(handle_.isRead(7));
    twinlog(handle_, 7, "after");
    EXPECT_EQ(std::vector<std::string>{"before"}, texts());
}

TEST_F(Ringlog, LeavesAFileThatIsNoRingAlone) {
    std::ofstream(path_) << "precious";
    EXPECT_THROW(ringIs(path_), RingError);
    EXPECT_EQ(8u, std::filesystem::file_size(path_));
}

TEST_F(Ringlog, RefusesWhatIsNoRegularFile) {
    EXPECT_THROW(ringIs("/dev/null"), RingError);
    EXPECT_THROW(ringIs(directory_), RingError);
    EXPECT_THROW(ringIs(directory_ + "/none/ring"), RingError);
}

// A limit on the size of files stands for a full disk; its signal comes with it.
TEST_F(Ringlog, LeavesNothingBehindWhereThereIsNoRoomForIt) {
    rlimit before{};
    ASSERT_EQ(0, ::getrlimit(RLIMIT_FSIZE, &before));
    rlimit const little{4096, before.rlim_max};
    auto const handler = ::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(0, ::setrlimit(RLIMIT_FSIZE, &little));
    EXPECT_THROW(ringIs(path_), RingError);
    EXPECT_EQ(0, ::setrlimit(RLIMIT_FSIZE, &before));
    ::signal(SIGXFSZ, handler);
    EXPECT_TRUE(std::filesystem::is_empty(directory_));
}

TEST_F(Ringlog, KeepsTheRingBeforeWhenANewOneIsRefused) {
    ringIs(path_);
    EXPECT_THROW(ringIs(directory_), RingError);
    twinlog(handle_, 7, "still here");
    EXPECT_EQ(std::vector<std::string>{"still here"}, texts());
}

TEST_F(Ringlog, LeavesNothingBesideTheRing) {
    ringIs(path_);
    EXPECT_THROW(ringIs(directory_), RingError);
    auto const all = std::filesystem::directory_iterator(directory_);
    EXPECT_EQ(1, std::distance(begin(all), end(all)));
}

TEST_F(Ringlog, KeepsTheValuesOfStatementsBeyondItsTableOfFormats) {
    static std::vector<std::unique_ptr<char[]>> const names = [] {
        std::vector<std::unique_ptr<char[]>> made;
        for (int number = 0; number < 600; ++number) {
            made.push_back(std::make_unique<char[]>(16));
            std::snprintf(made.back().get(), 16, "Many%d", number);
        }
        return made;
    }();
    ringIs(path_);
    for (auto const& name : names) {
        twinlog(handle(name.get()), 7, "message:%s", name.get());
    }
    auto const found = messages();
    ASSERT_EQ(600u, found.size());
    EXPECT_EQ("Many510", found[510].handle);
    EXPECT_EQ("message:Many510", found[510].text);
    EXPECT_EQ("Trace", found[511].handle);
    EXPECT_EQ("a statement beyond the table of formats: Many511", found[511].text);
    EXPECT_EQ("a statement beyond the table of formats: Many599", found[599].text);
}

TEST_F(Ringlog, TellsTheSameFormatOfTwoLevelsApart) {
    ringIs(path_);
    static constexpr char const* text = "a";
    twinlog(handle_, 1, text);
    twinlog(handle_, 2, text);
    auto const found = messages();
    ASSERT_EQ(2u, found.size());
    EXPECT_EQ(1u, found[0].level);
    EXPECT_EQ(2u, found[1].level);
}

// Runs `work` in a child process, which ends by the signal or the status that is returned.
template <class Work>
int statusOfChild(Work work) {
    auto const child = ::fork();
    if (child == 0) {
        work();
        ::_exit(0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return status;
}

TEST_F(Ringlog, SurvivesAWriterThatEndsWithoutCleaningUp) {
    EXPECT_EQ(0, statusOfChild([&] {
                  ringIs(path_);
                  twinlog(handle_, 7, "last words of %s", "leaf");
              }));
    EXPECT_EQ(std::vector<std::string>{"last words of leaf"}, texts());
}

TEST_F(Ringlog, SurvivesAWriterThatIsKilled) {
    auto const status = statusOfChild([&] {
        ringIs(path_);
        twinlog(handle_, 7, "last words of %s", "leaf");
        ::raise(SIGKILL);
    });
    EXPECT_EQ(SIGKILL, WTERMSIG(status));
    EXPECT_EQ(std::vector<std::string>{"last words of leaf"}, texts());
}

TEST_F(Ringlog, IsNotTakenAwayFromALivingProcess) {
    ringIs(path_);
    twinlog(handle_, 7, "mine");
    EXPECT_EQ(0, statusOfChild([&] {
                  ringIs(directory_ + "/other");  // it is a stranger to its parent's ring now
                  try {
                      ringIs(path_);
                      ::_exit(1);
                  } catch (RingError const&) {
                  }
              }));
    EXPECT_EQ(std::vector<std::string>{"mine"}, texts());
}

TEST_F(Ringlog, MayBeReplacedWhenItsProcessIsGone) {
    EXPECT_EQ(0, statusOfChild([&] { ringIs(path_); }));
    ringIs(path_);
    twinlog(handle_, 7, "mine");
    EXPECT_EQ(std::vector<std::string>{"mine"}, texts());
}

// The threadsafe style runs the statement in a fresh process, which reads its environment anew and
// has the same paths.
class RinglogDeathTest : public RingFixture {
  protected:
    RinglogDeathTest() {
        GTEST_FLAG_SET(death_test_style, "threadsafe");
        ::setenv("VYNPT_RING", path_.c_str(), 0);
    }
    ~RinglogDeathTest() override { ::unsetenv("VYNPT_RING"); }
};

TEST_F(RinglogDeathTest, IsNamedByTheEnvironment) {
    EXPECT_EXIT(
        {
            twinlog(handle("VynPtSm"), 9, "by environment");
            ::_exit(0);
        },
        ::testing::ExitedWithCode(0), "^$");
    EXPECT_EQ(std::vector<std::string>{"by environment"}, texts());
}

TEST_F(RinglogDeathTest, IsMadeByTheFirstStatementAndNotByAHandle) {
    EXPECT_EXIT(
        {
            handle("VynPtSm");
            ::_exit(std::filesystem::exists(path_) ? 1 : 0);
        },
        ::testing::ExitedWithCode(0), "^$");
}

TEST_F(RinglogDeathTest, IsDecidedByACallAgainstTheEnvironment) {
    EXPECT_EXIT(
        {
            ringDel();
            twinlog(handle("VynPtSm"), 9, "a");
            ::_exit(std::filesystem::exists(path_) ? 1 : 0);
        },
        ::testing::ExitedWithCode(0), "^$");
}

TEST_F(RinglogDeathTest, IsDoneWithoutWhenTheEnvironmentNamesNoUsableFile) {
    ::setenv("VYNPT_RING", "/dev/null", 1);
    EXPECT_EXIT(
        {
            twinlog(handle("VynPtSm"), 9, "a");
            twinlog(handle("VynPtSm"), 9, "b");
            ::_exit(handle("VynPtSm").isRead(9) ? 1 : 0);
        },
        ::testing::ExitedWithCode(0),
        "^VYNPT_RING: /dev/null: is no regular file; expected a trace ring or nothing\n$");
}

}  // namespace
}  // namespace Trace
