// A scenario. Its lines are read here; if none is refused for what it says, they are played in a
// child process, because a scenario may end the process it runs in. That end must be a described
// one.
#include <sys/wait.h>

#include <sstream>
#include <string>

#include "Target.h"
#include "replay/Event.h"
#include "replay/Members.h"
#include "replay/Printer.h"
#include "replay/Replay.h"

namespace {

// Whether the whole input can be read.
bool isReadable(std::string const& text) {
    std::istringstream in(text);
    bool readable = true;
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line.front() == '#') {
            continue;
        }
        try {
            static_cast<void>(Replay::readEvent(line));
        } catch (Replay::Refusal const& refusal) {
            Fuzz::check(*refusal.what() != '\0', "a refusal has a reason");
            readable = false;
        }
    }
    return readable;
}

int play(std::string const& text) {
    std::istringstream in(text);
    std::ostringstream out;
    std::ostringstream err;
    int const status = Replay::run(in, out, err, {"input", true});
    Fuzz::check((status == Replay::badInput) == !err.str().empty(), "bad input has its line");
    return status;
}

}  // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    std::string const text(Fuzz::textOf(data, size));
    if (!isReadable(text)) {
        return 0;
    }
    pid_t const child = ::fork();
    Fuzz::check(child != -1, "a child can be made");
    if (child == 0) {
        ::_exit(play(text));
    }
    int status = 0;
    Fuzz::check(::waitpid(child, &status, 0) == child, "the child can be waited for");
    Fuzz::check(WIFEXITED(status), "a scenario ends in a described way");
    int const exit = WEXITSTATUS(status);
    Fuzz::check(exit == Replay::allRun || exit == Replay::badInput || exit == Replay::fatalStatus,
                "a scenario ends with a described status");
    return 0;
}
