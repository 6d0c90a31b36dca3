// Mutations for inputs that are texts: now and then a whole number becomes another one. Changes of
// single bytes seldom turn a number into another one that is meaningful there, and numbers are
// where the edge cases of such texts lie: the length of a prefix, the tag of a VLAN, an id that two
// objects share.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <string_view>
#include <vector>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

namespace {

using std::string_view;

// The ends of the ranges of numbers in such texts, and the numbers one beyond.
constexpr string_view edges =
    "0 1 2 3 4 6 7 8 9 15 16 24 30 31 32 33 63 64 65 71 72 127 128 129 224 239 254 255 256 455 456 "
    "457 511 512 4093 4094 4095 4096 5000 10000 65534 65535 65536 2147483647 2147483648 4294967295 "
    "4294967296 9223372036854775807 9223372036854775808 18446744073709551615 18446744073709551616";

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

std::vector<string_view> numbersOf(string_view text) {
    std::vector<string_view> numbers;
    for (auto at = text.begin(); (at = std::find_if(at, text.end(), isDigit)) != text.end();) {
        auto const end = std::find_if_not(at, text.end(), isDigit);
        numbers.emplace_back(at, end);
        at = end;
    }
    return numbers;
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t maxSize, unsigned seed) {
    std::minstd_rand random(seed);
    auto const oneOf = [&random](std::vector<string_view> const& some) {
        return some[random() % some.size()];
    };
    string_view const text(reinterpret_cast<char const*>(data), size);
    auto const numbers = numbersOf(text);
    if (numbers.empty() || random() % 2 != 0) {
        return LLVMFuzzerMutate(data, size, maxSize);
    }
    static auto const edgeNumbers = numbersOf(edges);
    string_view const old = oneOf(numbers);
    // Half the time a number of the same text, so that references meet ids.
    std::string const put(oneOf(random() % 2 == 0 ? numbers : edgeNumbers));
    std::size_t const newSize = size - old.size() + put.size();
    if (newSize > maxSize) {
        return LLVMFuzzerMutate(data, size, maxSize);
    }
    auto const at = static_cast<std::size_t>(old.data() - text.data());
    std::memmove(data + at + put.size(), data + at + old.size(), size - at - old.size());
    std::memcpy(data + at, put.data(), put.size());
    return newSize;
}
