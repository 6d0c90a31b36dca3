// A pcap file that is written: the frames that were injected.
#pragma once

#include <sys/time.h>

#include <cstdint>
#include <memory>
#include <span>
#include <string>

struct pcap;
struct pcap_dumper;

namespace Cli {

// Thread: one at a time.
class CaptureWriter {
  public:
    // Creates or empties the file. Errors: UsageError.
    explicit CaptureWriter(std::string path);
    CaptureWriter(CaptureWriter const&) = delete;
    CaptureWriter& operator=(CaptureWriter const&) = delete;
    // Frames that were not flushed may be lost.
    ~CaptureWriter();

    void write(std::span<std::uint8_t const> frame, timeval const& time);

    // Writes everything so far to the file. Errors: UsageError, also for an earlier write.
    void flush();

  private:
    struct Close {
        void operator()(pcap* capture) const;
        void operator()(pcap_dumper* dumper) const;
    };

    std::string const path_;
    std::unique_ptr<pcap, Close> format_;
    std::unique_ptr<pcap_dumper, Close> dumper_;
};

}  // namespace Cli
