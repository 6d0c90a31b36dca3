// Which mutant is chosen. Every source of the instrumented copy includes this first.
//
// VYN_MUTANT is the number of the mutant that runs, none when it is not set. VYN_MUTANTS_REACHED
// names a file with a byte for each number, in which those that are asked for become 1.
#pragma once

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <type_traits>

namespace Mutation {

inline unsigned chosenNumber() noexcept {
    char const* const text = std::getenv("VYN_MUTANT");
    return text != nullptr ? static_cast<unsigned>(std::strtoul(text, nullptr, 10)) : 0;
}

inline unsigned char* reachedBytes() noexcept {
    char const* const name = std::getenv("VYN_MUTANTS_REACHED");
    int const descriptor = name != nullptr ? ::open(name, O_RDWR | O_CLOEXEC) : -1;
    struct stat about;
    if (descriptor < 0 || ::fstat(descriptor, &about) != 0) {
        return nullptr;
    }
    void* const bytes = ::mmap(nullptr, static_cast<std::size_t>(about.st_size),
                               PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
    ::close(descriptor);
    return bytes != MAP_FAILED ? static_cast<unsigned char*>(bytes) : nullptr;
}

inline unsigned const chosen = chosenNumber();
inline unsigned char* const reached = reachedBytes();

// Whether mutant `number` runs. Not for constant expressions, so that what it decides is decided
// when the program runs.
inline bool isNow(unsigned number) noexcept {
    if (reached != nullptr) [[unlikely]] {
        reached[number] = 1;
    }
    return chosen == number;
}

// The same where an expression may also be a constant; there it is the unmutated one.
constexpr bool is(unsigned number) noexcept {
    return !std::is_constant_evaluated() && isNow(number);
}

// A value of the type of an argument, to stand in its place.
template <class T>
using Plain = std::remove_cvref_t<T>;

template <unsigned number, class T>
T const& changedConstant(T changed) noexcept {
    static T const kept = changed;
    return kept;
}

// A mention of a constant whose declaration is mutated: still an object with an address.
template <unsigned number, class T>
constexpr T const& constant(T const& original, std::type_identity_t<T> changed) noexcept {
    return is(number) ? changedConstant<number, T>(changed) : original;
}

}  // namespace Mutation
