// The lines in which the model and the logbook write down what happens. They share the wording
// only: each decides for itself what happened.
#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>

#include "Plexa/IntfId.h"

namespace Simulate {

inline void append(std::string& line, std::string_view text) {
    line += text;
}
inline void append(std::string& line, std::same_as<bool> auto flag) {
    line += flag ? "true" : "false";
}
template <std::integral Number>
requires(!std::same_as<Number, bool> && !std::same_as<Number, char>) void append(std::string& line,
                                                                                 Number number) {
    line += std::to_string(number);
}
inline void append(std::string& line, Plexa::IntfId const& intf) {
    char name[Plexa::IntfId::maxNameSize];
    line.append(name, intf.nameTo(name));
}

template <class... Parts>
std::string joined(Parts const&... parts) {
    std::string line;
    (append(line, parts), ...);
    return line;
}

// A number that stands for many bytes: FNV-1a.
template <class Bytes>
std::uint64_t digestOf(Bytes const& bytes) {
    std::uint64_t hash = 0xcbf29ce484222325ULL;
    for (auto const byte : bytes) {
        hash = (hash ^ static_cast<std::uint8_t>(byte)) * 0x100000001b3ULL;
    }
    return hash;
}

}  // namespace Simulate
