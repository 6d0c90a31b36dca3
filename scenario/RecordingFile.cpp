#include "scenario/RecordingFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <system_error>
#include <utility>

namespace Scenario {

RecordingFile::RecordingFile(std::string path)
    : path_(std::move(path)),
      descriptor_(::open(path_.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666)) {
    if (descriptor_ == -1) {
        throw std::system_error(errno, std::generic_category(), path_);
    }
}

RecordingFile::~RecordingFile() {
    ::close(descriptor_);
}

void RecordingFile::append(std::string_view lines) noexcept {
    if (!error_.empty()) {
        return;
    }
    std::string_view rest = lines;
    while (!rest.empty()) {
        ssize_t const written = ::write(descriptor_, rest.data(), rest.size());
        if (written > 0) {
            rest.remove_prefix(static_cast<std::size_t>(written));
        } else if (written == 0 || errno != EINTR) {
            fail(written == 0 ? "nothing was written" : std::strerror(errno));
            [[maybe_unused]] int const cut = ::ftruncate(descriptor_, size_);
            return;
        }
    }
    size_ += static_cast<long long>(lines.size());
}

void RecordingFile::fail(std::string_view reason) noexcept {
    if (error_.empty()) {
        error_ = path_ + ": " + std::string(reason);
    }
}

}  // namespace Scenario
