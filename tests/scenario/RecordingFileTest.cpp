#include "scenario/RecordingFile.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <fstream>
#include <string>
#include <system_error>

#include "ScratchPath.h"

namespace Scenario {
namespace {

class RecordingFileTest : public testing::Test {
  protected:
    std::string content() const { return scratch_.content(); }

  private:
    ScratchPath const scratch_{"recording.jsonl"};

  protected:
    std::string const path = scratch_.string();
};

TEST_F(RecordingFileTest, HasWhatWasAppendedAtOnce) {
    RecordingFile file(path);
    file.append("one\n");
    EXPECT_EQ(content(), "one\n");
    file.append("two\nthree\n");
    EXPECT_EQ(content(), "one\ntwo\nthree\n");
    EXPECT_EQ(file.error(), "");
}

TEST_F(RecordingFileTest, EmptiesAFileThatIsThere) {
    std::ofstream(path) << "an older recording\n";
    RecordingFile const file(path);
    EXPECT_EQ(content(), "");
}

TEST_F(RecordingFileTest, NamesThePathThatCannotBeMade) {
    try {
        RecordingFile const file("/no/such/directory/run.jsonl");
        FAIL();
    } catch (std::system_error const& error) {
        EXPECT_NE(std::string(error.what()).find("/no/such/directory/run.jsonl"),
                  std::string::npos);
    }
}

TEST_F(RecordingFileTest, TakesAShortWriteBackAndSaysWhy) {
    RecordingFile file(path);
    file.append("one\n");
    rlimit before{};
    ::getrlimit(RLIMIT_FSIZE, &before);
    auto* const handler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit const limit{6, before.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    file.append("two\nthree\n");
    ::setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    file.append("four\n");
    EXPECT_EQ(content(), "one\n");
    EXPECT_EQ(file.error(), path + ": File too large");
}

TEST_F(RecordingFileTest, KeepsTheFirstReasonAndNothingMore) {
    RecordingFile file(path);
    file.append("one\n");
    file.fail("no memory");
    file.fail("no disk");
    file.append("two\n");
    EXPECT_EQ(content(), "one\n");
    EXPECT_EQ(file.error(), path + ": no memory");
}

}  // namespace
}  // namespace Scenario
