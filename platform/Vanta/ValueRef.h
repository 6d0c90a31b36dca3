// A reference to a value whose type the receiver knows: keys and old values in notifications.
#pragma once

#include <typeinfo>

#include "Vanta/Assert.h"

namespace Vanta {

// Valid while the notification is being delivered; it owns nothing and copies nothing.
class ValueRef {
  public:
    ValueRef() noexcept = default;
    template <class T>
    static ValueRef to(T const& value) noexcept {
        ValueRef ref;
        ref.address_ = &value;
        ref.type_ = &typeid(T);
        return ref;
    }

    bool empty() const noexcept { return address_ == nullptr; }
    template <class T>
    bool holds() const noexcept {
        return address_ != nullptr && *type_ == typeid(T);
    }
    // The value. Asking for another type than the one referred to is a bug and ends the process.
    template <class T>
    T const& get() const noexcept {
        assertThat(holds<T>(), "ValueRef::holds<T>()");
        return *static_cast<T const*>(address_);
    }

  private:
    void const* address_ = nullptr;
    std::type_info const* type_ = nullptr;
};

}  // namespace Vanta
