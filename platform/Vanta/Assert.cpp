#include "Vanta/Assert.h"

#include <cxxabi.h>
#include <unistd.h>

#include <cstdlib>
#include <exception>
#include <initializer_list>
#include <string>
#include <typeinfo>

#include "Vanta/HookChain.h"

namespace Vanta {
namespace {

// Allocates nothing: the process may be ending because memory ran out.
void writeLine(std::initializer_list<std::string_view> parts) noexcept {
    // One write, so that lines of two dying threads do not mix.
    char line[512];
    std::size_t size = 0;
    for (std::string_view const part : parts) {
        size += part.copy(line + size, sizeof line - 1 - size);
    }
    line[size++] = '\n';
    [[maybe_unused]] ssize_t const written = ::write(STDERR_FILENO, line, size);
}

constinit HookChain<LastStep> lastSteps;

std::string classNameOf(std::exception const& error) {
    int status = 0;
    char* demangled = abi::__cxa_demangle(typeid(error).name(), nullptr, nullptr, &status);
    std::string name = status == 0 ? demangled : typeid(error).name();
    std::free(demangled);
    std::size_t const scope = name.rfind("::");
    return scope == std::string::npos ? name : name.substr(scope + 2);
}

}  // namespace

LastStep::LastStep(Function function, void* context) noexcept
    : function_(function), context_(context) {
    lastSteps.add(*this);
}

LastStep::~LastStep() {
    lastSteps.remove(*this);
}

void endProcess(std::string_view errorClass, std::string_view text) noexcept {
    for (LastStep const* step = lastSteps.first(); step != nullptr; step = step->older_) {
        step->function_(step->context_, errorClass, text);
    }
    if (errorClass != "assert") {
        writeLine({"uncaught ", errorClass, ": ", text});
    }
    std::abort();
}

void endProcessWithCurrentException() noexcept {
    try {
        throw;
    } catch (std::exception const& error) {
        endProcess(classNameOf(error), error.what());
    } catch (...) {
        endProcess("unknown", "an exception that is no std::exception");
    }
}

void assertionFailed(std::string_view expression) noexcept {
    writeLine({"assertion failed: ", expression});
    endProcess("assert", expression);
}

}  // namespace Vanta
