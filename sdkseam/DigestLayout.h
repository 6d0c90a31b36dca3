// The trace digest as the SDK's wrappers describe it: where its fields lie, and its learn quanta.
//
// Both classes know this one digest. What they report can be falsified, for tests and scenarios.
// Threads: any; falsified on the event thread before a tracer uses them.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "Vanta/Node.h"
#include "VyPd/VyPdIntf.h"
#include "VyResourceInfo/VyResourceInfoIntf.h"
#include "sdkseam/TraceDigest.h"

namespace SdkSeam {

class DigestLayout final : public VyPd::VyPdIntf {
  public:
    static Vanta::Ptr<DigestLayout> DigestLayoutIs();

    // From now on `size` is reported for the field; false, and no effect, for an unknown field.
    bool fieldSizeIs(std::string_view field, std::uint32_t size) noexcept;

    std::uint32_t digestEntrySize(std::string_view digest) const override;
    std::uint8_t const* digestEntryField(std::uint8_t const* entry, std::string_view digest,
                                         std::string_view field,
                                         std::uint32_t& size) const override;

  private:
    friend struct Vanta::NodeFactory;
    DigestLayout() noexcept;
    ~DigestLayout() override = default;

    std::array<std::uint32_t, digestFields.size()> sizes_;  // as reported
};

class LearnQuanta final : public VyResourceInfo::VyResourceInfoIntf {
  public:
    static Vanta::Ptr<LearnQuanta> LearnQuantaIs();

    // False takes the digest out of the program: its index is then the invalid one.
    void digestKnownIs(bool known) noexcept { digestKnown_ = known; }

    std::uint32_t vyLearnQuantaIndex(std::string_view digest) const override;
    // 0 for an index that is no digest's.
    std::uint32_t vyLearnQuanta(std::uint32_t index) const override;

  private:
    friend struct Vanta::NodeFactory;
    LearnQuanta() = default;
    ~LearnQuanta() override = default;

    bool digestKnown_ = true;
};

}  // namespace SdkSeam
