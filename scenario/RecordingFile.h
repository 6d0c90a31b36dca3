// The file that a recording is written to: whole lines only, whatever happens.
//
// Lines are handed to the system before append() returns. If the system does not take a write
// whole, the file is cut back to the end of the line before it, and nothing follows.
// Thread: one at a time.
#pragma once

#include <string>
#include <string_view>

namespace Scenario {

class RecordingFile {
  public:
    // Makes the file, or empties the one that is there.
    // Errors: std::system_error, which names the path.
    explicit RecordingFile(std::string path);
    RecordingFile(RecordingFile const&) = delete;
    RecordingFile& operator=(RecordingFile const&) = delete;
    ~RecordingFile();

    // Appends lines, each with its end. Nothing happens after an error.
    void append(std::string_view lines) noexcept;

    // Gives the recording up: the lines that are there stay, and nothing follows them.
    void fail(std::string_view reason) noexcept;

    // Why the recording ends early, the path included; empty if it does not.
    std::string const& error() const noexcept { return error_; }

  private:
    std::string const path_;
    int descriptor_;
    long long size_ = 0;  // of the whole lines
    std::string error_;
};

}  // namespace Scenario
