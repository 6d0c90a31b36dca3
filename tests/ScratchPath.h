// A path of a test's own, which is removed after the test: tests run in parallel processes, and
// none may use the files of another one.
#pragma once

#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

class ScratchPath {
  public:
    // Nothing is made at the path. `name` tells the files of one process apart.
    explicit ScratchPath(std::string const& name)
        : path_(std::filesystem::temp_directory_path() / ("vynpt-" + process() + "-" + name)) {}
    ScratchPath(ScratchPath const&) = delete;
    ScratchPath& operator=(ScratchPath const&) = delete;
    // Removes what is there, a folder with all that it contains.
    ~ScratchPath() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    std::string string() const { return path_.string(); }
    // What the file contains; nothing if there is none.
    std::string content() const {
        std::ifstream in(path_, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

  private:
    // A death test of the threadsafe style runs its statement in a process that starts afresh: that
    // process must use the paths of the one that judges it.
    static std::string process() {
        ::setenv("VYNPT_TEST_PROCESS", std::to_string(::getpid()).c_str(), 0);
        return ::getenv("VYNPT_TEST_PROCESS");
    }

    std::filesystem::path path_;
};
