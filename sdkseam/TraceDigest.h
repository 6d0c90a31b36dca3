// The data-plane program's trace digest: its name, the numbers under which the SDK knows it, and
// the memory layout of an entry.
//
// An entry is 9 bytes, packed, each field in host byte order:
//
//   offset  width  field
//   0       2      pktGen_pktId
//   2       1      pktTracerMd_copy_to_cpu
//   3       2      egrMd_egrL2Domain
//   5       2      pktTracerMd_ucast_egress_port
//   7       1      egrMd_routed
//   8       1      ig_intr_md_for_dprsr_drop_ctl
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <type_traits>

namespace SdkSeam {

inline constexpr std::string_view digestName = "pktTracerDigest";
inline constexpr std::uint32_t digestHandle = 77;      // the SDK's handle of its field list
inline constexpr std::uint32_t digestQuantaIndex = 5;  // its learn-quanta index
inline constexpr std::size_t digestEntryBytes = 9;

// The most that a receiver takes in one learn message.
inline constexpr std::size_t maxMessageBytes = 4096;
inline constexpr std::size_t maxMessageEntries = maxMessageBytes / digestEntryBytes;

// What the pipeline says of one packet.
struct TraceDigest {
    static constexpr std::uint16_t noEgressPort = 511;

    std::uint16_t pktId = 0;
    std::uint8_t copyToCpu = 0;
    std::uint16_t l2Domain = 0;
    std::uint16_t egrPort = noEgressPort;
    std::uint8_t routed = 0;
    std::uint8_t dropCtl = 0;

    bool operator==(TraceDigest const&) const = default;
};

struct DigestField {
    std::string_view name;
    std::uint32_t offset;
    std::uint32_t width;
};

// The fields in the order in which they lie.
inline constexpr std::array<DigestField, 6> digestFields{{
    {"pktGen_pktId", 0, 2},
    {"pktTracerMd_copy_to_cpu", 2, 1},
    {"egrMd_egrL2Domain", 3, 2},
    {"pktTracerMd_ucast_egress_port", 5, 2},
    {"egrMd_routed", 7, 1},
    {"ig_intr_md_for_dprsr_drop_ctl", 8, 1},
}};
inline constexpr auto digestFieldNames = [] {
    std::array<std::string_view, digestFields.size()> names;
    std::ranges::transform(digestFields, names.begin(), &DigestField::name);
    return names;
}();
static_assert(digestFields.back().offset + digestFields.back().width == digestEntryBytes);

using DigestEntry = std::array<std::uint8_t, digestEntryBytes>;

// Pairs the fields with the values that they carry: use(field, value).
template <class Digest, class Use>
constexpr void eachDigestField(Digest& digest, Use const& use) {
    use(digestFields[0], digest.pktId);
    use(digestFields[1], digest.copyToCpu);
    use(digestFields[2], digest.l2Domain);
    use(digestFields[3], digest.egrPort);
    use(digestFields[4], digest.routed);
    use(digestFields[5], digest.dropCtl);
}

// The entry of a digest, and the digest of an entry.
constexpr DigestEntry packed(TraceDigest const& digest) {
    DigestEntry entry{};
    eachDigestField(digest, [&entry](DigestField const& field, auto value) {
        auto const bytes = std::bit_cast<std::array<std::uint8_t, sizeof value>>(value);
        std::ranges::copy(bytes, entry.begin() + field.offset);
    });
    return entry;
}

constexpr TraceDigest unpacked(std::span<std::uint8_t const, digestEntryBytes> entry) {
    TraceDigest digest;
    eachDigestField(digest, [&entry](DigestField const& field, auto& value) {
        std::array<std::uint8_t, sizeof value> bytes{};
        std::ranges::copy(entry.subspan(field.offset, bytes.size()), bytes.begin());
        value = std::bit_cast<std::remove_reference_t<decltype(value)>>(bytes);
    });
    return digest;
}

}  // namespace SdkSeam
