#include "cli/Capture.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <vector>

#include "ScratchFile.h"
#include "cli/UsageError.h"

namespace Cli {
namespace {

std::string little(std::uint64_t value, unsigned size) {
    std::string bytes;
    for (unsigned i = 0; i < size; ++i) {
        bytes += static_cast<char>(value >> 8 * i);
    }
    return bytes;
}

std::string header(std::uint32_t linkType) {
    return little(0xa1b2c3d4, 4) + little(2, 2) + little(4, 2) + little(0, 8) + little(65535, 4) +
           little(linkType, 4);
}

std::string record(std::string const& frame, std::size_t length) {
    return little(7, 4) + little(123, 4) + little(static_cast<std::uint32_t>(frame.size()), 4) +
           little(static_cast<std::uint32_t>(length), 4) + frame;
}
std::string record(std::string const& frame) {
    return record(frame, frame.size());
}

constexpr std::uint32_t ethernet = 1;

// Reads a capture to its end or its first problem, which is the last element.
std::vector<std::string> read(std::string const& path,
                              std::optional<std::uint64_t> only = std::nullopt) {
    std::vector<std::string> found;
    try {
        Capture capture(path, only);
        while (auto packet = capture.next()) {
            found.push_back(std::to_string(packet->number) + ": " +
                            Vanta::hexText(packet->frame.view()));
        }
    } catch (UsageError const& error) {
        found.emplace_back(error.what());
    }
    return found;
}

std::vector<std::string> readBytes(std::string const& bytes,
                                   std::optional<std::uint64_t> only = std::nullopt) {
    ScratchFile const file("capture", bytes);
    auto found = read(file.path(), only);
    for (std::string& line : found) {
        if (line.starts_with(file.path())) {
            line.replace(0, file.path().size(), "FILE");
        }
    }
    return found;
}

using Lines = std::vector<std::string>;

TEST(Capture, GivesEveryFrameWithItsNumber) {
    EXPECT_EQ(readBytes(header(ethernet) + record("ab") + record("c")),
              (Lines{"1: 6162", "2: 63"}));
}

TEST(Capture, GivesTheTimeOfAFrame) {
    ScratchFile const file("capture", header(ethernet) + record("ab"));
    auto const packet = Capture(file.path()).next();
    ASSERT_TRUE(packet);
    EXPECT_EQ(packet->time.tv_sec, 7);
    EXPECT_EQ(packet->time.tv_usec, 123);
}

TEST(Capture, ReadsPcapng) {
    EXPECT_EQ(read(example("captures/mixed.pcapng")).size(), 10U);
}

TEST(Capture, GivesTheOneFrameThatIsAskedFor) {
    EXPECT_EQ(readBytes(header(ethernet) + record("ab") + record("c") + record("d"), 2),
              (Lines{"2: 63"}));
}

TEST(Capture, LooksAtNothingBehindTheFrameThatIsAskedFor) {
    EXPECT_EQ(readBytes(header(ethernet) + record("ab") + "torn", 1), (Lines{"1: 6162"}));
}

TEST(Capture, AnEmptyFrameIsAFrame) {
    EXPECT_EQ(readBytes(header(ethernet) + record("")), (Lines{"1: "}));
}

TEST(Capture, AFrameNumberBeyondTheEndIsRefused) {
    EXPECT_EQ(readBytes(header(ethernet) + record("ab"), 3),
              (Lines{"FILE: expected a frame 3, got the end after frame 1"}));
}

TEST(Capture, AFileThatIsNotThereIsRefused) {
    EXPECT_EQ(read("/nowhere/a.pcap"), (Lines{"/nowhere/a.pcap: No such file or directory"}));
}

TEST(Capture, ADirectoryIsRefused) {
    EXPECT_EQ(read("/"), (Lines{"/: Is a directory"}));
}

TEST(Capture, AnEmptyFileIsRefused) {
    auto const found = readBytes("");
    ASSERT_EQ(found.size(), 1U);
    EXPECT_TRUE(found[0].starts_with("FILE: expected a pcap or pcapng capture: ")) << found[0];
}

TEST(Capture, AFileThatIsNoCaptureIsRefused) {
    auto const found = readBytes("{\"this\": \"is no capture\"}");
    ASSERT_EQ(found.size(), 1U);
    EXPECT_TRUE(found[0].starts_with("FILE: expected a pcap or pcapng capture: ")) << found[0];
}

TEST(Capture, ACaptureWithoutFramesIsRefused) {
    EXPECT_EQ(readBytes(header(ethernet)), (Lines{"FILE: expected at least one frame, got none"}));
}

TEST(Capture, AnotherLinkTypeIsRefused) {
    EXPECT_EQ(readBytes(header(113) + record("ab")),
              (Lines{"FILE: expected Ethernet frames, got link type LINUX_SLL"}));
}

TEST(Capture, AFileThatEndsInsideAFrameIsRefusedBehindItsWholeFrames) {
    auto const found = readBytes(header(ethernet) + record("ab") + record("cdef").substr(0, 18));
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0], "1: 6162");
    EXPECT_TRUE(found[1].starts_with("FILE: frame 2: ")) << found[1];
}

TEST(Capture, AFrameThatWasNotCapturedWholeIsRefused) {
    EXPECT_EQ(readBytes(header(ethernet) + record("ab") + record("cd", 100)),
              (Lines{"1: 6162", "FILE: frame 2: expected a whole frame, got 2 of its 100 bytes"}));
}

TEST(Capture, ItsProgressEndsAtOne) {
    Capture capture(example("captures/ecmp.pcap"));
    ASSERT_TRUE(capture.progress());
    EXPECT_LT(*capture.progress(), 1.0);
    while (capture.next()) {
    }
    EXPECT_EQ(*capture.progress(), 1.0);
}

TEST(Capture, APipeIsReadyWhenAFrameIsThere) {
    ScratchFile const file("fifo");
    std::filesystem::remove(file.path());
    ASSERT_EQ(::mkfifo(file.path().c_str(), 0600), 0);
    std::fstream writer(file.path(), std::ios::in | std::ios::out | std::ios::binary);
    writer << header(ethernet) << std::flush;
    Capture capture(file.path());
    EXPECT_FALSE(capture.ready());
    EXPECT_FALSE(capture.progress());
    writer << record("ab") << std::flush;
    EXPECT_TRUE(capture.ready());
    EXPECT_TRUE(capture.next());
    EXPECT_FALSE(capture.ready());
}

TEST(Capture, KnowsItsOwnFileUnderAnyName) {
    ScratchFile const file("capture", header(ethernet) + record("ab"));
    ScratchFile const other("other");
    Capture const capture(file.path());
    EXPECT_TRUE(capture.isSameFile(file.path()));
    EXPECT_TRUE(capture.isSameFile("/proc/self/root" + file.path()));
    EXPECT_FALSE(capture.isSameFile(other.path()));
    EXPECT_FALSE(capture.isSameFile("/nowhere/a.pcap"));
}

}  // namespace
}  // namespace Cli
