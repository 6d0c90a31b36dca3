// An object whose memory belongs to somebody else once it was destroyed.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <new>
#include <utility>

template <class T>
class Mortal {
  public:
    template <class... Args>
    explicit Mortal(Args&&... args)
        : object_(::new (memory_.data()) T(std::forward<Args>(args)...)) {}
    Mortal(Mortal const&) = delete;
    Mortal& operator=(Mortal const&) = delete;
    ~Mortal() {
        if (object_ != nullptr) {
            object_->~T();
        }
    }

    T& operator*() const noexcept { return *object_; }
    T* operator->() const noexcept { return object_; }

    // Destroys it and fills its memory with what no live object holds.
    void goes() {
        std::exchange(object_, nullptr)->~T();
        memory_.fill(theirs);
    }

    // Whether nothing was written to the memory since.
    bool isMemoryTheirs() const {
        return std::all_of(memory_.begin(), memory_.end(),
                           [](std::byte byte) { return byte == theirs; });
    }

  private:
    static constexpr std::byte theirs{0xff};

    alignas(T) std::array<std::byte, sizeof(T)> memory_{};
    T* object_;
};
