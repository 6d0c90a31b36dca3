// A file of a test's own, which goes with it.
#pragma once

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include <unistd.h>

namespace Cli {

class ScratchFile {
  public:
    explicit ScratchFile(std::string const& name, std::string const& content = "")
        : path_(std::filesystem::temp_directory_path() /
                ("vynpt-" + std::to_string(::getpid()) + "-" + name)) {
        std::ofstream(path_, std::ios::binary) << content;
    }
    ScratchFile(ScratchFile const&) = delete;
    ScratchFile& operator=(ScratchFile const&) = delete;
    ~ScratchFile() { std::filesystem::remove(path_); }

    std::string path() const { return path_.string(); }
    std::string content() const {
        std::ostringstream text;
        text << std::ifstream(path_, std::ios::binary).rdbuf();
        return text.str();
    }

  private:
    std::filesystem::path const path_;
};

inline std::string example(std::string const& name) {
    return std::string(VYN_SOURCE_DIR) + "/examples/" + name;
}

inline std::string contentOf(std::string const& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

}  // namespace Cli
