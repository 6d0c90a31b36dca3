#include "simulate/Child.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <sstream>
#include <system_error>

namespace Simulate {
namespace {

constexpr unsigned secondsBeforeItHangs = 300;

void check(bool good, char const* what) {
    if (!good) {
        throw std::system_error(errno, std::generic_category(), what);
    }
}

std::string written(Report const& report) {
    std::ostringstream out;
    out << report.failed << ' ' << report.step << ' ' << report.position << ' ' << report.turns
        << ' ' << report.injections << ' ' << report.messages << '\n'
        << report.end << '\n'
        << report.invariant << '\n'
        << report.event << '\n'
        << report.detail;
    return out.str();
}

Report readReport(std::string const& text) {
    std::istringstream in(text);
    Report report;
    in >> report.failed >> report.step >> report.position >> report.turns >> report.injections >>
        report.messages;
    in.get();
    std::getline(in, report.end);
    std::getline(in, report.invariant);
    std::getline(in, report.event);
    std::getline(in, report.detail, '\0');
    return report;
}

[[noreturn]] void runAndExit(Program const& program, int pipe) {
    ::alarm(secondsBeforeItHangs);
    // The texts of foreseen ends are nobody's business.
    int const nowhere = ::open("/dev/null", O_WRONLY);
    int const complaints = ::dup(STDERR_FILENO);
    ::dup2(nowhere, STDERR_FILENO);
    auto const finish = [&](Report const& report) {
        std::string const text = written(report);
        static_cast<void>(!::write(pipe, text.data(), text.size()));
        ::dup2(complaints, STDERR_FILENO);
        ::_exit(0);
    };
    Run run(program, finish);
    finish(run.go());
    ::_exit(1);
}

}  // namespace

Child::Child(Program const& program) {
    int ends[2];
    check(::pipe(ends) == 0, "pipe");
    pid_ = ::fork();
    check(pid_ >= 0, "fork");
    if (pid_ == 0) {
        ::close(ends[0]);
        runAndExit(program, ends[1]);
    }
    ::close(ends[1]);
    pipe_ = ends[0];
}

Child::~Child() {
    if (pid_ > 0) {
        ::kill(pid_, SIGKILL);
        ::waitpid(pid_, nullptr, 0);
    }
    if (pipe_ >= 0) {
        ::close(pipe_);
    }
}

Report Child::wait() {
    std::string text;
    char buffer[4096];
    for (;;) {
        ssize_t const size = ::read(pipe_, buffer, sizeof buffer);
        if (size < 0 && errno == EINTR) {
            continue;
        }
        check(size >= 0, "read");
        if (size == 0) {
            break;
        }
        text.append(buffer, static_cast<std::size_t>(size));
    }
    int status = 0;
    check(::waitpid(pid_, &status, 0) == pid_, "waitpid");
    pid_ = -1;
    if (!text.empty()) {
        return readReport(text);
    }
    Report report;
    report.failed = true;
    report.invariant = "alive";
    report.detail = WIFSIGNALED(status)
                        ? std::string("the process died of ") + ::strsignal(WTERMSIG(status))
                        : "the process went with status " + std::to_string(WEXITSTATUS(status));
    return report;
}

Report runInChild(Program const& program) {
    return Child(program).wait();
}

}  // namespace Simulate
