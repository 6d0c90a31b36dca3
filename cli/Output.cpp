#include "cli/Output.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace Cli {
namespace {

std::string_view environment(char const* name) {
    char const* const value = std::getenv(name);
    return value != nullptr ? value : "";
}

}  // namespace

OutputError::OutputError(int error)
    : std::runtime_error(std::string("standard output: ") + std::strerror(error)),
      closed_(error == EPIPE) {}

void Output::write(std::string_view block) {
    buffer_ += block;
    if (buffer_.size() >= kept) {
        flush();
    }
}

void Output::flush() {
    std::string_view rest = buffer_;
    while (!rest.empty()) {
        auto const written = ::write(descriptor_, rest.data(), rest.size());
        if (written < 0 && errno != EINTR) {
            int const error = errno;
            buffer_.clear();
            throw OutputError(error);
        }
        rest.remove_prefix(written > 0 ? static_cast<std::size_t>(written) : 0);
    }
    buffer_.clear();
}

bool Output::isTerminal() const {
    return ::isatty(descriptor_) == 1;
}

bool Output::wantsColour() const {
    return isTerminal() && environment("NO_COLOR").empty() && environment("TERM") != "dumb";
}

}  // namespace Cli
