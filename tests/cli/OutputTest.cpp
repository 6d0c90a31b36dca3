#include "cli/Output.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <csignal>

namespace Cli {
namespace {

class OutputTest : public testing::Test {
  protected:
    OutputTest() {
        EXPECT_EQ(::pipe(ends_.data()), 0);
        ::fcntl(ends_[0], F_SETFL, O_NONBLOCK);
        std::signal(SIGPIPE, SIG_IGN);
    }
    ~OutputTest() override {
        closeReader();
        ::close(ends_[1]);
        std::signal(SIGPIPE, SIG_DFL);
    }

    std::string read() {
        std::string text(Output::kept * 2, '\0');
        auto const size = ::read(ends_[0], text.data(), text.size());
        text.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
        return text;
    }
    void closeReader() { ::close(std::exchange(ends_[0], -1)); }

    std::array<int, 2> ends_{};
};

TEST_F(OutputTest, BlocksAreKeptUntilTheyAreFlushed) {
    Output output(ends_[1]);
    output.write("one\n");
    output.write("two\n");
    EXPECT_EQ(read(), "");
    output.flush();
    EXPECT_EQ(read(), "one\ntwo\n");
}

TEST_F(OutputTest, WhenMuchIsKeptItGoesOutByWholeBlocks) {
    Output output(ends_[1]);
    std::string const block(Output::kept / 2 + 1, 'x');
    output.write(block);
    EXPECT_EQ(read(), "");
    ::fcntl(ends_[1], F_SETPIPE_SZ, Output::kept * 4);
    output.write(block);
    EXPECT_EQ(read().size(), 2 * block.size());
}

TEST_F(OutputTest, AReaderThatIsGoneIsToldApartFromOtherErrors) {
    closeReader();
    Output output(ends_[1]);
    output.write("one\n");
    try {
        output.flush();
        FAIL();
    } catch (OutputError const& error) {
        EXPECT_TRUE(error.isClosed());
    }
}

TEST(Output, AFullDiskIsAnError) {
    int const full = ::open("/dev/full", O_WRONLY);
    Output output(full);
    output.write("one\n");
    try {
        output.flush();
        FAIL();
    } catch (OutputError const& error) {
        EXPECT_FALSE(error.isClosed());
        EXPECT_EQ(std::string(error.what()), "standard output: No space left on device");
    }
    ::close(full);
}

TEST_F(OutputTest, APipeWantsNoColour) {
    EXPECT_FALSE(Output(ends_[1]).wantsColour());
}

TEST(Output, ATerminalWantsColourUnlessToldOtherwise) {
    int const terminal = ::posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_NE(terminal, -1);
    ::setenv("TERM", "xterm", 1);
    ::unsetenv("NO_COLOR");
    Output const output(terminal);
    EXPECT_TRUE(output.wantsColour());
    ::setenv("NO_COLOR", "1", 1);
    EXPECT_FALSE(output.wantsColour());
    ::setenv("NO_COLOR", "", 1);
    ::setenv("TERM", "dumb", 1);
    EXPECT_FALSE(output.wantsColour());
    ::close(terminal);
}

}  // namespace
}  // namespace Cli
