#include "cli/CaptureWriter.h"

#include <gtest/gtest.h>

#include "PacketTracer/PacketSize.h"
#include "ScratchFile.h"
#include "cli/Capture.h"
#include "cli/UsageError.h"

namespace Cli {
namespace {

TEST(CaptureWriter, WhatIsWrittenIsReadAgain) {
    ScratchFile const file("written");
    std::vector<std::uint8_t> const frame(1500, 0x5a);
    CaptureWriter writer(file.path());
    writer.write(frame, {.tv_sec = 5, .tv_usec = 6});
    writer.flush();
    Capture capture(file.path());
    auto const packet = capture.next();
    ASSERT_TRUE(packet);
    EXPECT_EQ(packet->frame, Vanta::Bytes(frame));
    EXPECT_EQ(packet->time.tv_sec, 5);
    EXPECT_EQ(packet->time.tv_usec, 6);
    EXPECT_FALSE(capture.next());
}

TEST(CaptureWriter, AFrameOfTheGreatestLengthIsReadAgain) {
    ScratchFile const file("written");
    CaptureWriter writer(file.path());
    writer.write(std::vector<std::uint8_t>(PacketTracer::maximumFrameSize), {});
    writer.flush();
    EXPECT_EQ(Capture(file.path()).next()->frame.size(), PacketTracer::maximumFrameSize);
}

TEST(CaptureWriter, AFileThatCannotBeMadeIsRefusedByName) {
    try {
        CaptureWriter const writer("/nowhere/out.pcap");
        FAIL();
    } catch (UsageError const& error) {
        EXPECT_EQ(std::string(error.what()), "/nowhere/out.pcap: No such file or directory");
    }
}

TEST(CaptureWriter, AFullDiskIsAnError) {
    CaptureWriter writer("/dev/full");
    writer.write(std::vector<std::uint8_t>(9000), {});
    EXPECT_THROW(writer.flush(), UsageError);
}

}  // namespace
}  // namespace Cli
