// Layout of the data-plane program's digests.
#pragma once

#include <cstdint>
#include <string_view>

#include "Kel/Object.h"
#include "VynExport.h"

namespace VyPd {

class VYN_EXPORT VyPdIntf : public Kel::Object {
  public:
    // Bytes of one entry of a digest; 0 for a digest that the program does not have.
    virtual std::uint32_t digestEntrySize(std::string_view digest) const = 0;

    // The position of a field in an entry, and how many bytes it has; the bytes are in host order.
    // Null and size 0 for a field that the digest does not have.
    virtual std::uint8_t const* digestEntryField(std::uint8_t const* entry, std::string_view digest,
                                                 std::string_view field,
                                                 std::uint32_t& size) const = 0;

    Kel::TypeInfo const& typeInfo() const noexcept override;

  protected:
    VyPdIntf() = default;
    ~VyPdIntf() override;
};

}  // namespace VyPd
