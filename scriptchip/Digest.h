// The trace digest as the scripted chip's program lays it out.
//
// An entry is 9 bytes, packed, in host byte order:
//
//   offset  width  field
//   0       2      pktGen_pktId
//   2       1      pktTracerMd_copy_to_cpu
//   3       2      egrMd_egrL2Domain
//   5       2      pktTracerMd_ucast_egress_port
//   7       1      egrMd_routed
//   8       1      ig_intr_md_for_dprsr_drop_ctl
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "Vanta/Node.h"
#include "VyPd/VyPdIntf.h"
#include "VyResourceInfo/VyResourceInfoIntf.h"

namespace ScriptChip {

inline constexpr std::string_view digestName = "pktTracerDigest";
inline constexpr std::uint32_t digestEntrySize = 9;
inline constexpr std::uint32_t digestHandle = 77;
inline constexpr std::uint32_t digestLearnQuantaIndex = 5;

// What the pipeline says of one packet. The egress port 511 is none.
struct DigestEntry {
    std::uint16_t pktId = 0;
    std::uint8_t copyToCpu = 0;
    std::uint16_t l2Domain = 0;
    std::uint16_t egrPort = 511;
    std::uint8_t routed = 0;
    std::uint8_t dropCtl = 0;
};

// The entries as bytes, one behind the other.
std::vector<std::uint8_t> packDigestEntries(std::span<DigestEntry const> entries);

// Where the fields lie. It knows the one digest; a field's reported size can be falsified.
class DigestLayout final : public VyPd::VyPdIntf {
  public:
    static constexpr std::size_t fieldCount = 6;

    static Vanta::Ptr<DigestLayout> DigestLayoutIs();

    // The fields' names, in the order in which they lie.
    static std::array<std::string_view, fieldCount> const& fieldNames() noexcept;

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

    std::array<std::uint32_t, fieldCount> sizes_;
};

// The learn quanta of the one digest.
class LearnQuanta final : public VyResourceInfo::VyResourceInfoIntf {
  public:
    static Vanta::Ptr<LearnQuanta> LearnQuantaIs();

    // False takes the digest out of the program: its index is then the invalid one.
    void digestKnownIs(bool known) noexcept { digestKnown_ = known; }

    std::uint32_t vyLearnQuantaIndex(std::string_view digest) const override;
    std::uint32_t vyLearnQuanta(std::uint32_t index) const override;

  private:
    friend struct Vanta::NodeFactory;
    LearnQuanta() = default;
    ~LearnQuanta() override = default;

    bool digestKnown_ = true;
};

}  // namespace ScriptChip
