#include "Trace/Trace.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Trace/Captured.h"
#include "Trace/Tap.h"

namespace Trace {
namespace {

// A value that counts how often somebody formats it.
struct Counted {
    mutable int timesWritten = 0;
};

Value traceValue(Counted const& counted) {
    return Value::written(&counted, [](void const* object, char* to, std::size_t) {
        ++static_cast<Counted const*>(object)->timesWritten;
        *to = 'c';
        return std::size_t{1};
    });
}

struct Told {
    std::string handle;
    unsigned level;
    std::string text;
    bool operator==(Told const&) const = default;
};

void keep(void* context, std::string_view handle, unsigned level, std::string_view text) {
    static_cast<std::vector<Told>*>(context)->push_back(
        {std::string(handle), level, std::string(text)});
}

class Twinlog : public ::testing::Test {
  protected:
    ~Twinlog() override { handle_.textLevelsIs(LevelSet()); }

    Handle& handle_ = handle("TraceTest");
    std::vector<Told> told_;
};

// Whether twinlog can be called with a format made for `places` values and these values. A literal
// of the wrong count does not even become a Format: its consteval constructor refuses it.
template <std::size_t places, class... Values>
concept Callable = requires(Handle& handle, Format<places> format, Values... values) {
    twinlog(handle, 7, format, values...);
};
static_assert(Callable<0>);
static_assert(Callable<2, int, std::string_view>);
static_assert(!Callable<1>);
static_assert(!Callable<1, int, int>);

TEST_F(Twinlog, TellsTheTapOfEveryLevelWhateverIsEnabled) {
    Tap const tap(keep, &told_);
    twinlog(handle_, 0, "first:");
    twinlog(handle_, 9, "second:%s %s", 5, false);
    EXPECT_EQ((std::vector<Told>{{"TraceTest", 0, "first:"}, {"TraceTest", 9, "second:5 false"}}),
              told_);
}

TEST_F(Twinlog, TellsTheTapOfHandlesMadeAfterIt) {
    Tap const tap(keep, &told_);
    twinlog(handle("TraceTest.later"), 9, "a");
    EXPECT_EQ(1u, told_.size());
}

TEST_F(Twinlog, TellsTheTapBeforeTheTextTrace) {
    static Captured* captured = nullptr;
    static std::size_t writesBefore = 1;
    Captured here;
    captured = &here;
    handle_.textLevelsIs(LevelSet::all());
    Tap const tap([](void*, std::string_view, unsigned,
                     std::string_view) { writesBefore = captured->writes().size(); },
                  nullptr);
    twinlog(handle_, 1, "a");
    EXPECT_EQ(0u, writesBefore);
    EXPECT_EQ(1u, here.writes().size());
}

TEST_F(Twinlog, TellsATapThatWasTakenAwayNothing) {
    { Tap const tap(keep, &told_); }
    twinlog(handle_, 1, "a");
    EXPECT_TRUE(told_.empty());
}

TEST_F(Twinlog, TellsEveryTapTheNewestFirst) {
    Tap const older(keep, &told_);
    Tap const newer([](void* told, std::string_view, unsigned,
                       std::string_view text) { keep(told, "newer", 0, text); },
                    &told_);
    twinlog(handle_, 1, "a");
    EXPECT_EQ((std::vector<Told>{{"newer", 0, "a"}, {"TraceTest", 1, "a"}}), told_);
}

TEST_F(Twinlog, GoesOnTellingTheTapThatWasThereBefore) {
    Tap const older(keep, &told_);
    {
        std::vector<Told> others;
        Tap const newer(keep, &others);
    }
    twinlog(handle_, 1, "a");
    EXPECT_EQ(1u, told_.size());
}

TEST_F(Twinlog, DoesNotTellATapOfWhatAnotherTapTraces) {
    Tap const older(keep, &told_);
    Tap const newer([](void* context, std::string_view, unsigned,
                       std::string_view) { twinlog(*static_cast<Handle*>(context), 1, "inside"); },
                    &handle_);
    twinlog(handle_, 1, "outside");
    EXPECT_EQ((std::vector<Told>{{"TraceTest", 1, "outside"}}), told_);
}

TEST_F(Twinlog, DoesNotTellTheTapOfItsOwnStatements) {
    static int calls = 0;
    Tap const tap(
        [](void* context, std::string_view, unsigned, std::string_view) {
            ++calls;
            twinlog(*static_cast<Handle*>(context), 1, "inside");
        },
        &handle_);
    twinlog(handle_, 1, "outside");
    EXPECT_EQ(1, calls);
}

TEST_F(Twinlog, FormatsNothingWhenNobodyReads) {
    Counted counted;
    handle_.textLevelsIs(LevelSet::all().without(LevelSet::only(7)));
    twinlog(handle_, 7, "%s", counted);
    EXPECT_EQ(0, counted.timesWritten);
}

TEST_F(Twinlog, FormatsOnceForTapAndTextTogether) {
    Captured captured;
    Counted counted;
    Tap const tap(keep, &told_);
    handle_.textLevelsIs(LevelSet::all());
    twinlog(handle_, 7, "%s", counted);
    EXPECT_EQ(1, counted.timesWritten);
}

TEST_F(Twinlog, TakesTwelveValues) {
    Tap const tap(keep, &told_);
    twinlog(handle_, 7, "%s%s%s%s%s%s%s%s%s%s%s%s", 1, 2, 3, 4, 5, 6, 7, 8, 9, "a", true, 'A');
    ASSERT_EQ(1u, told_.size());
    EXPECT_EQ("123456789atrue65", told_[0].text);
}

TEST_F(Twinlog, PassesLongTextsWhole) {
    Tap const tap(keep, &told_);
    std::string const name(100'000, 'n');
    twinlog(handle_, 7, "%s", name);
    ASSERT_EQ(1u, told_.size());
    EXPECT_EQ(name, told_[0].text);
}

}  // namespace
}  // namespace Trace
