// Resources of the data-plane program: the learn quanta of its digests.
#pragma once

#include <cstdint>
#include <string_view>

#include "Kel/Object.h"
#include "VynExport.h"

namespace VyResourceInfo {

// The index of a digest that the program does not have.
inline constexpr std::uint32_t VyResourceInfoIndexInvalid = 0x0FFFFFFF;

class VYN_EXPORT VyResourceInfoIntf : public Kel::Object {
  public:
    // The learn-quanta index of a digest, or VyResourceInfoIndexInvalid.
    virtual std::uint32_t vyLearnQuantaIndex(std::string_view digest) const = 0;
    // The SDK's handle of the digest's field list at a learn-quanta index.
    virtual std::uint32_t vyLearnQuanta(std::uint32_t index) const = 0;

    Kel::TypeInfo const& typeInfo() const noexcept override;

  protected:
    VyResourceInfoIntf() = default;
    ~VyResourceInfoIntf() override;
};

}  // namespace VyResourceInfo
