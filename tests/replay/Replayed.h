// Runs scenarios from texts, for tests.
#pragma once

#include <initializer_list>
#include <sstream>
#include <string>

#include "replay/Replay.h"

namespace Replay {

// What a run left behind.
struct Replayed {
    int status;
    std::string out;
    std::string err;
};

inline Replayed replayText(std::string const& text, bool dump = false) {
    std::istringstream in(text);
    std::ostringstream out;
    std::ostringstream err;
    int const status = run(in, out, err, {"test.jsonl", dump});
    return {status, out.str(), err.str()};
}

// The lines, each with its end.
inline std::string joined(std::initializer_list<char const*> lines) {
    std::string text;
    for (char const* const line : lines) {
        text.append(line).push_back('\n');
    }
    return text;
}

inline Replayed replayLines(std::initializer_list<char const*> lines) {
    return replayText(joined(lines));
}

// The lines of a text in which `part` stands.
inline std::string linesWith(std::string const& text, std::string_view part) {
    std::string found;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (line.find(part) != std::string::npos) {
            found += line + '\n';
        }
    }
    return found;
}

}  // namespace Replay
