// What the fuzz targets share. A target is one function that libFuzzer calls with one input after
// the other in one process; what an input does must not depend on the ones before it.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

namespace Fuzz {

// Ends the process, which libFuzzer takes for a finding, unless `holds`.
inline void check(bool holds, char const* what) {
    if (!holds) {
        std::fprintf(stderr, "not true: %s\n", what);
        std::abort();
    }
}

// The input as an array of just its size: a sanitizer sees a read behind its end.
inline std::string_view textOf(std::uint8_t const* data, std::size_t size) {
    return {reinterpret_cast<char const*>(data), size};
}

// A file in memory, for readers that take a path. It is the same file for every input.
class File {
  public:
    explicit File(char const* name) : descriptor_(::memfd_create(name, MFD_CLOEXEC)) {
        check(descriptor_ != -1, "a file in memory can be made");
        path_ = "/proc/self/fd/" + std::to_string(descriptor_);
    }
    File(File const&) = delete;
    File& operator=(File const&) = delete;
    ~File() { ::close(descriptor_); }

    void contentIs(std::uint8_t const* data, std::size_t size) const {
        check(::ftruncate(descriptor_, 0) == 0, "the file can be emptied");
        check(::pwrite(descriptor_, data, size, 0) == static_cast<ssize_t>(size),
              "the file can be written");
    }
    std::string const& path() const { return path_; }

  private:
    int descriptor_;
    std::string path_;
};

}  // namespace Fuzz
