// A file of a test's own, which is removed after the test.
#pragma once

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "ScratchPath.h"
#include "tests/SourceDir.h"

namespace Cli {

class ScratchFile {
  public:
    explicit ScratchFile(std::string const& name, std::string const& content = "") : path_(name) {
        std::ofstream(path(), std::ios::binary) << content;
    }

    std::string path() const { return path_.string(); }
    std::string content() const { return path_.content(); }

  private:
    ScratchPath const path_;
};

inline std::string example(std::string const& name) {
    return sourcePath("examples/" + name);
}

inline std::string contentOf(std::string const& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

}  // namespace Cli
