#include "Vanta/SharedBytes.h"

#include <limits>
#include <new>

#include "Grist/Grist.h"

namespace Vanta {
namespace {

// Eight bytes a step. Names and frames are short, and equal values are rare, so a good mix of every
// byte matters more than the last nanosecond.
std::uint64_t hashOf(unsigned char const* data, std::size_t size) noexcept {
    std::uint64_t hash = 0x9e3779b97f4a7c15ULL ^ size;
    while (size > 0) {
        std::uint64_t word = 0;
        std::size_t const step = size < sizeof word ? size : sizeof word;
        std::memcpy(&word, data, step);
        hash = (hash ^ word) * 0xff51afd7ed558ccdULL;
        hash ^= hash >> 32;
        data += step;
        size -= step;
    }
    return hash;
}

}  // namespace

SharedBytes::SharedBytes(void const* data, std::size_t size) {
    if (size == 0) {
        return;
    }
    if (size > std::numeric_limits<std::uint32_t>::max()) {
        throw std::bad_alloc();
    }
    void* const memory = Grist::allocate(sizeof(Block) + size);
    auto const* bytes = static_cast<unsigned char const*>(data);
    block_ = ::new (memory) Block{1, static_cast<std::uint32_t>(size), hashOf(bytes, size)};
    std::memcpy(block_ + 1, bytes, size);
}

void SharedBytes::free(Block* block) noexcept {
    Grist::deallocate(block, sizeof(Block) + block->size);
}

}  // namespace Vanta
