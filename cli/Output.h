// Standard output, written block by block, so that whatever ends the process finds whole blocks
// there.
//
// Thread: one only.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace Cli {

// What was to be written cannot be.
class OutputError : public std::runtime_error {
  public:
    explicit OutputError(int error);

    // Nobody reads any more: no fault of anybody's, and nothing to be said about it.
    bool isClosed() const noexcept { return closed_; }

  private:
    bool closed_;
};

class Output {
  public:
    // Blocks are kept until there are so many bytes of them, or flush() is called.
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
