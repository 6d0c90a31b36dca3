#include "SourceDir.h"

std::string sourcePath(std::string_view name) {
    return std::string(VYN_SOURCE_DIR) + "/" + std::string(name);
}
