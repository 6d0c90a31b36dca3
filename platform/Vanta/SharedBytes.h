// The storage that String and Bytes share: an immutable, counted run of bytes in one block.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

#include "VynExport.h"

namespace Vanta {

// A value of one pointer's size. Copies share the block; the empty value has none. The hash is
// computed once, when the block is made. Thread: one only; it does not cross to another.
class VYN_EXPORT SharedBytes {
  public:
    SharedBytes() noexcept = default;
    // A copy of `size` bytes. Errors: std::bad_alloc.
    SharedBytes(void const* data, std::size_t size);
    SharedBytes(SharedBytes const& other) noexcept : block_(other.block_) { take(); }
    SharedBytes(SharedBytes&& other) noexcept : block_(std::exchange(other.block_, nullptr)) {}
    SharedBytes& operator=(SharedBytes other) noexcept {
        std::swap(block_, other.block_);
        return *this;
    }
    ~SharedBytes() {
        if (block_ != nullptr && --block_->count == 0) {
            free(block_);
        }
    }

    unsigned char const* data() const noexcept {
        return block_ != nullptr ? reinterpret_cast<unsigned char const*>(block_ + 1) : nullptr;
    }
    std::size_t size() const noexcept { return block_ != nullptr ? block_->size : 0; }
    std::uint64_t hash() const noexcept { return block_ != nullptr ? block_->hash : 0; }

    friend bool operator==(SharedBytes const& a, SharedBytes const& b) noexcept {
        return a.block_ == b.block_ || (a.size() == b.size() && a.hash() == b.hash() &&
                                        std::memcmp(a.data(), b.data(), a.size()) == 0);
    }

  private:
    struct Block {
        std::uint32_t count;
        std::uint32_t size;
        std::uint64_t hash;
    };

    void take() const noexcept {
        if (block_ != nullptr) {
            ++block_->count;
        }
    }
    static void free(Block* block) noexcept;

    Block* block_ = nullptr;
};

}  // namespace Vanta
