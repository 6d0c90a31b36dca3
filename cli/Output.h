// Standard output, written block by block, so that it holds whole blocks only, however the process
// ends.
//
// Thread: one only.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace Cli {

// A write failed.
class OutputError : public std::runtime_error {
  public:
    explicit OutputError(int error);

    // The reader has closed its end: that is no error, and no message is printed about it.
    bool isClosed() const noexcept { return closed_; }

  private:
    bool closed_;
};

class Output {
  public:
    // Blocks are kept until they have so many bytes in all, or flush() is called.
    static constexpr std::size_t kept = 65536;

    explicit Output(int descriptor) : descriptor_(descriptor) {}
    Output(Output const&) = delete;
    Output& operator=(Output const&) = delete;

    // Writes a whole block. Errors: OutputError.
    void write(std::string_view block);
    // Errors: OutputError.
    void flush();

    // Whether it is a terminal on which colours are welcome (NO_COLOR, TERM).
    bool wantsColour() const;
    bool isTerminal() const;

  private:
    int const descriptor_;
    std::string buffer_;
};

}  // namespace Cli
