#include "simulate/Child.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fstream>
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

void writeScenario(Transcript const& transcript, Program const& program, Report const& report,
                   std::string const& file) {
    std::ofstream out(file);
    std::istringstream detail(report.detail);
    out << "# Seed " << program.seed << ", step " << report.step << ", invariant "
        << report.invariant << ".\n";
    for (std::string line; std::getline(detail, line);) {
        out << "# " << line << '\n';
    }
    if (report.invariant != "events" && report.invariant != "end") {
        out << "# A replay may print nothing of this as it happens; with --dump it prints what\n"
               "# everything holds at the end.\n";
    }
    out << transcript.text();
    if (!transcript.endedBy().empty()) {
        out << "# This is not the whole run: " << transcript.endedBy() << ".\n";
    }
}

[[noreturn]] void runAndExit(Program const& program, int pipe, std::string const& file) {
    ::alarm(secondsBeforeItHangs);
    // Nobody reads the texts of foreseen ends.
    int const nowhere = ::open("/dev/null", O_WRONLY);
    int const complaints = ::dup(STDERR_FILENO);
    ::dup2(nowhere, STDERR_FILENO);
    Transcript transcript;
    auto const finish = [&](Report const& report) {
        if (report.failed && !file.empty()) {
            writeScenario(transcript, program, report, file);
        }
        std::string const text = written(report);
        static_cast<void>(!::write(pipe, text.data(), text.size()));
        ::dup2(complaints, STDERR_FILENO);
        ::_exit(0);
    };
    Run run(program, finish);
    if (!file.empty()) {
        run.transcriptIs(transcript);
    }
    finish(run.go());
    ::_exit(1);
}

}  // namespace

Child::Child(Program const& program, std::string const& scenario) {
    int ends[2];
    check(::pipe(ends) == 0, "pipe");
    pid_ = ::fork();
    check(pid_ >= 0, "fork");
    if (pid_ == 0) {
        ::close(ends[0]);
        runAndExit(program, ends[1], scenario);
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

Report runInChild(Program const& program, std::string const& scenario) {
    return Child(program, scenario).wait();
}

}  // namespace Simulate
