// A capture file, pcap or pcapng.
#include "cli/Capture.h"
#include "Target.h"
#include "cli/UsageError.h"

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static Fuzz::File const file("capture");
    file.contentIs(data, size);
    try {
        Cli::Capture capture(file.path());
        std::uint64_t frames = 0;
        while (auto const packet = capture.next()) {
            Fuzz::check(packet->number == ++frames, "frames are counted");
            Fuzz::check(!packet->text().empty(), "a packet has a text");
        }
        Fuzz::check(frames > 0, "a capture without frames is refused");
    } catch (Cli::UsageError const& error) {
        Fuzz::check(std::string_view(error.what()).find(file.path()) != std::string_view::npos,
                    "an error names the file");
    }
    return 0;
}
