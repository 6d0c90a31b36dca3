// What the data-plane program calls its trace digest, and where a digest entry's fields lie.
//
// An entry is 9 bytes, packed, each field in host byte order:
//
//   offset   size   field
//   0        2      pktGen_pktId
//   2        1      pktTracerMd_copy_to_cpu
//   3        2      egrMd_egrL2Domain
//   5        2      pktTracerMd_ucast_egress_port
//   7        1      egrMd_routed
//   8        1      ig_intr_md_for_dprsr_drop_ctl
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "VyPd/VyPdIntf.h"
#include "VyResourceInfo/VyResourceInfoIntf.h"
#include "softchip/Pipeline.h"

namespace SoftChip {

inline constexpr std::string_view digestName = "pktTracerDigest";
inline constexpr std::uint32_t digestHandle = 77;      // the SDK's handle of its field list
inline constexpr std::uint32_t digestQuantaIndex = 5;  // its learn-quanta index
inline constexpr std::size_t digestEntryBytes = 9;
inline constexpr std::size_t maxMessageBytes = 4096;  // of entries in one message
inline constexpr std::size_t maxMessageEntries = maxMessageBytes / digestEntryBytes;

using DigestEntry = std::array<std::uint8_t, digestEntryBytes>;

// The entry that tells of a decision about a packet.
DigestEntry packDigestEntry(std::uint16_t pktId, Decision const& decision);

// The packet id of an entry.
std::uint16_t pktIdOf(DigestEntry const& entry);

// The layout as the SDK's wrapper gives it. Thread: any.
class DigestLayout final : public VyPd::VyPdIntf {
  public:
    static Vanta::Ptr<DigestLayout> DigestLayoutIs();

    std::uint32_t digestEntrySize(std::string_view digest) const override;
    std::uint8_t const* digestEntryField(std::uint8_t const* entry, std::string_view digest,
                                         std::string_view field,
                                         std::uint32_t& size) const override;

  private:
    friend struct Vanta::NodeFactory;
    DigestLayout() = default;
    ~DigestLayout() override = default;
};

// The learn quanta as the SDK's wrapper gives them. Thread: any.
class LearnQuanta final : public VyResourceInfo::VyResourceInfoIntf {
  public:
    static Vanta::Ptr<LearnQuanta> LearnQuantaIs();

    std::uint32_t vyLearnQuantaIndex(std::string_view digest) const override;
    // 0 for an index that is no digest's.
    std::uint32_t vyLearnQuanta(std::uint32_t index) const override;

  private:
    friend struct Vanta::NodeFactory;
    LearnQuanta() = default;
    ~LearnQuanta() override = default;
};

}  // namespace SoftChip
