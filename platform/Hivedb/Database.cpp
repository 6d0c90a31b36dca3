#include "Hivedb/Database.h"

#include <algorithm>
#include <string>

namespace Hivedb {
namespace {

bool isNameCharacter(char c) noexcept {
    bool const letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
    bool const digit = c >= '0' && c <= '9';
    return letter || digit || std::string_view("-_.:").find(c) != std::string_view::npos;
}

// Checks the name that starts at `start` and returns where it ends.
std::size_t checkName(std::string_view path, std::size_t start) {
    auto const rest = path.substr(start);
    auto const length =
        static_cast<std::size_t>(std::ranges::find_if_not(rest, isNameCharacter) - rest.begin());
    auto const name = rest.substr(0, length);
    if (name.empty()) {
        throw PathError(path, start, "a name");
    }
    if (name == "." || name == "..") {
        throw PathError(path, start, "a name other than \".\" and \"..\"");
    }
    return start + length;
}

void checkPath(std::string_view path) {
    std::size_t position = 0;
    do {
        if (position == path.size() || path[position] != '/') {
            throw PathError(path, position, position == 0 ? "'/'" : "'/' or the end");
        }
        position = checkName(path, position + 1);
    } while (position < path.size());
}

std::string pathErrorText(std::string_view path, std::size_t position, std::string_view expected) {
    std::string text = "Hivedb path \"";
    text.append(path).append("\", character ").append(std::to_string(position + 1));
    return text.append(": expected ").append(expected);
}

}  // namespace

PathError::PathError(std::string_view path, std::size_t position, std::string_view expected)
    : Error("Hivedb::Database", "mount", pathErrorText(path, position, expected)) {}

Vanta::Ptr<Database> Database::DatabaseIs() {
    return Vanta::makeNode<Database>();
}

Vanta::Ptr<Kel::Dir> Database::mount(Vanta::String const& path) {
    checkPath(path.view());
    auto* entry = mounts_.find(path);
    if (entry == nullptr) {
        entry = &mounts_.insert(path, Mount{Kel::Dir::DirIs()});
    }
    ++entry->value.count;
    return entry->value.dir;
}

bool Database::unmount(Vanta::String const& path) {
    auto* const entry = mounts_.find(path);
    if (entry == nullptr) {
        return false;
    }
    if (--entry->value.count == 0) {
        static_cast<void>(mounts_.remove(*entry));
    }
    return true;
}

std::vector<Vanta::String> Database::list(std::string_view prefix) const {
    if (prefix.ends_with('/')) {
        prefix.remove_suffix(1);
    }
    std::vector<Vanta::String> paths;
    for (auto const& entry : mounts_) {
        std::string_view const path = entry.key.view();
        if (path.starts_with(prefix) && path.substr(prefix.size()).starts_with('/')) {
            paths.push_back(entry.key);
        }
    }
    return paths;
}

Kel::TypeInfo const& Database::typeInfo() const noexcept {
    static constexpr Kel::AttributeInfo attributes[] = {
        Kel::attribute<&Database::mounts>(Kel::firstAttribute, "mounts", "Hivedb::Mount",
                                          Kel::AttributeKind::collection),
    };
    static constexpr std::string_view operations[] = {"mount", "unmount", "list"};
    static constexpr Kel::TypeInfo info{"Database", attributes, operations};
    return info;
}

}  // namespace Hivedb
