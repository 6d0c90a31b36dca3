// A capture file, pcap or pcapng, read frame by frame.
//
// Refused, with the name of the file or the number of the frame: a file that cannot be read, is no
// capture, ends inside a frame or holds no frame; a link type other than Ethernet; a frame that was
// not captured whole, because the missing bytes could change the answer. Thread: the event thread.
#pragma once

#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "cli/FrameSource.h"

struct pcap;

namespace Cli {

class Capture final : public FrameSource {
  public:
    // Opens `path`, "-" being standard input. With `only` next() gives that frame alone, counted
    // from 1. Errors: UsageError.
    explicit Capture(std::string const& path, std::optional<std::uint64_t> only = std::nullopt);
    Capture(Capture const&) = delete;
    Capture& operator=(Capture const&) = delete;
    ~Capture() override;

    // Errors: UsageError also where there are no frames, or fewer than the one that was asked for.
    std::optional<Packet> next() override;
    bool ready() const override;
    std::optional<double> progress() const override;

    // Whether `path` is the very file that is read.
    bool isSameFile(std::string const& path) const;

  private:
    struct Record;
    struct Close {
        void operator()(pcap* capture) const;
    };

    std::optional<Record> read();
    std::optional<Packet> end();
    Packet packetOf(Record const& record) const;
    std::string frameName() const;

    std::string const name_;
    std::optional<std::uint64_t> const only_;
    std::FILE* file_ = nullptr;  // closed by capture_
    std::unique_ptr<pcap, Close> capture_;
    double size_ = 0;           // of a regular file, in bytes
    std::uint64_t frames_ = 0;  // read so far
    bool ended_ = false;
};

}  // namespace Cli
