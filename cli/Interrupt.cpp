#include "cli/Interrupt.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <system_error>
#include <utility>

namespace Cli {
namespace {

// A signal handler uses nothing but these; both are lock-free.
std::atomic<int> received = 0;
std::atomic<int> wakeDescriptor = -1;

void remember(int signal) {
    received = signal;
    std::uint64_t const one = 1;
    [[maybe_unused]] auto const written = ::write(wakeDescriptor, &one, sizeof one);
}

void handlerIs(void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    // Without SA_RESTART: a read that waits for a capture ends, too.
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    for (int const signal : {SIGINT, SIGTERM}) {
        ::sigaction(signal, &action, nullptr);
    }
}

}  // namespace

Interrupt::Interrupt(Vanta::Ptr<Orb::TaskSchedulerRoot> loop) {
    int const descriptor = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (descriptor == -1) {
        throw std::system_error(errno, std::generic_category(), "eventfd");
    }
    descriptor_ = Orb::FileDescriptor::FileDescriptorIs(std::move(loop), descriptor, "interrupt");
    descriptor_->notifyOnReadableIs(true);
    received = 0;
    wakeDescriptor = descriptor;
    handlerIs(&remember);
}

Interrupt::~Interrupt() {
    handlerIs(SIG_DFL);
    wakeDescriptor = -1;
}

int Interrupt::signal() noexcept {
    return received;
}

void Interrupt::raiseAgain() {
    if (int const signal = received; signal != 0) {
        ::raise(signal);
    }
}

}  // namespace Cli
