#include "Trace/Text.h"

#include <gtest/gtest.h>

#include <regex>

#include "Trace/Captured.h"
#include "Trace/Trace.h"

namespace Trace {
namespace {

class Text : public ::testing::Test {
  protected:
    ~Text() override { handle_.textLevelsIs(LevelSet()); }

    Handle& handle_ = handle("TextTest");
    Captured captured_;
};

TEST_F(Text, SaysTimeHandleLevelAndMessageInALine) {
    handle_.textLevelsIs(LevelSet::all());
    twinlog(handle_, 7, "handleClient:client %s", "leaf");
    auto const writes = captured_.writes();
    ASSERT_EQ(1u, writes.size());
    EXPECT_TRUE(std::regex_match(
        writes[0], std::regex("\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\\.\\d{6}Z TextTest 7 "
                              "handleClient:client leaf\n")))
        << writes[0];
}

TEST_F(Text, IsOneWriteAMessageWhateverItsLength) {
    handle_.textLevelsIs(LevelSet::all());
    twinlog(handle_, 1, "%s", std::string(3000, 'x'));
    twinlog(handle_, 1, "%s", true);
    EXPECT_EQ(2u, captured_.writes().size());
}

TEST_F(Text, LeavesErrnoAlone) {
    handle_.textLevelsIs(LevelSet::all());
    textDescriptorIs(-1);
    errno = ENOENT;
    twinlog(handle_, 1, "a");
    EXPECT_EQ(ENOENT, errno);
}

TEST(TextLine, ShowsTheTimeInUtc) {
    std::string line;
    appendLineHead(line, 951827696'123456789, "VynPtSm", 4);
    EXPECT_EQ("2000-02-29T12:34:56.123456Z VynPtSm 4 ", line);
}

TEST(TextLine, ShowsATimeBeforeTheEpoch) {
    std::string line;
    appendLineHead(line, -1, "VynPtSm", 4);
    EXPECT_EQ("1969-12-31T23:59:59.999999Z VynPtSm 4 ", line);
}

}  // namespace
}  // namespace Trace
