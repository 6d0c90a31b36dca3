// What the tests of the whole chip share: a small switch, and a receiver of its digests.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "VynSdk/VynSdk.h"
#include "softchip/Phase0.h"
#include "softchip/SoftChip.h"
#include "tests/softchip/FrameBuilder.h"

namespace SoftChip {

// One entry as its fields.
struct Digest {
    std::uint16_t pktId = 0;
    bool copyToCpu = false;
    std::uint16_t l2Domain = 0;
    std::uint16_t egressPort = 0;
    bool routed = false;
    bool drop = false;
    bool operator==(Digest const&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, Digest const& digest) {
    return out << "packet " << digest.pktId << " egress port " << digest.egressPort << " domain "
               << digest.l2Domain << (digest.routed ? " routed" : "")
               << (digest.copyToCpu ? " copy" : "") << (digest.drop ? " drop" : "");
}

// Reads the fields where the layout has them, without the code that wrote them.
inline Digest digestAt(std::uint8_t const* bytes) {
    auto const word = [&](std::size_t offset) {
        std::uint16_t value = 0;
        std::memcpy(&value, bytes + offset, sizeof value);
        return value;
    };
    return {word(0), bytes[2] != 0, word(3), word(5), bytes[7] != 0, bytes[8] != 0};
}

// Takes messages and, unless told otherwise, acknowledges each. `calls` belongs to the chip's
// thread until it has been drained.
struct DigestReceiver {
    struct Called {
        p4_pd_sess_hdl_t session;
        pipe_flow_lrn_msg_t* message;
        std::vector<std::uint8_t> head;  // its first 8 bytes
        std::vector<Digest> digests;
        p4_pd_status_t acknowledged;
    };
    std::vector<Called> calls;
    bool acknowledges = true;
    std::function<void()> inside;  // what else is to happen inside the callback

    static p4_pd_status_t callback(p4_pd_sess_hdl_t session, pipe_flow_lrn_msg_t* message,
                                   void* cookie) {
        return static_cast<DigestReceiver*>(cookie)->take(session, message);
    }
    p4_pd_status_t take(p4_pd_sess_hdl_t session, pipe_flow_lrn_msg_t* message) {
        auto const* const bytes = reinterpret_cast<std::uint8_t const*>(message);
        Called called{session, message, {bytes, bytes + 8}, {}, 0};
        auto const* entry = static_cast<std::uint8_t const*>(message->entries);
        for (unsigned i = 0; i < message->num_entries; ++i, entry += 9) {
            called.digests.push_back(digestAt(entry));
        }
        if (inside) {
            inside();
        }
        if (acknowledges) {
            called.acknowledged = pipe_mgr_flow_lrn_notify_ack(session, 77, message);
        }
        calls.push_back(called);
        return called.acknowledged;
    }

    std::vector<std::uint16_t> pktIds() const {
        std::vector<std::uint16_t> ids;
        for (auto const& call : calls) {
            for (auto const& digest : call.digests) {
                ids.push_back(digest.pktId);
            }
        }
        return ids;
    }
};

// Port 1 and 2 are access ports of VLAN 10; host B is behind port 2. All calls go through the seam.
class ChipFixture : public testing::Test {
  protected:
    static constexpr VynId::VynDevId device = 3;
    static constexpr p4_pd_sess_hdl_t session = 9;
    using Bytes = std::vector<std::uint8_t>;
    using Kind = JournalEntry::Kind;

    explicit ChipFixture(Mode mode = Mode::stepwise)
        : chip({.device = device,
                .session = session,
                .mode = mode,
                .journalLimit = Journal::unlimited}) {
        chip.change([](Tables& tables) {
            for (DevicePort const port : {DevicePort{1}, DevicePort{2}}) {
                tables.portIs(port, true);
                tables.modeIs(LogicalPort::port(port), PortMode::access(10));
                tables.vlanMemberIs(10, LogicalPort::port(port));
            }
            tables.fdbIs(10, FrameBuilder::mac("02:00:00:00:00:0b"), LogicalPort::port(2));
        });
    }

    static Bytes frame(char const* dst = "02:00:00:00:00:0b") {
        return FrameBuilder::join(
            {FrameBuilder::ethernet(FrameBuilder::mac(dst), FrameBuilder::mac("02:00:00:00:00:0a")),
             FrameBuilder::ipv4({}, FrameBuilder::udp())});
    }
    static Bytes phase0(DevicePort port = 1) {
        auto const bytes = encodePhase0(port);
        return {bytes.begin(), bytes.end()};
    }
    static constexpr p4_pd_status_t code(Status status) {
        return static_cast<p4_pd_status_t>(status);
    }

    p4_pd_status_t registerDigest() {
        return pipe_mgr_lrn_digest_notification_register(session, device, 77,
                                                         &DigestReceiver::callback, &receiver);
    }
    p4_pd_status_t deregisterDigest() {
        return pipe_mgr_lrn_digest_notification_deregister(session, device, 77);
    }
    p4_pd_status_t inject(std::uint16_t pktId, Bytes const& pkt = frame(), unsigned pipe = 0) {
        return VynSdk::genOnePkt(session, device, pipe, 68, 1, 4, pkt, phase0(), pktId);
    }
    std::uint64_t counter(unsigned pipe = 0) {
        std::uint64_t count = 0;
        EXPECT_EQ(VynSdk::getPktCounters(session, device, pipe, 4, count), 0);
        return count;
    }
    std::vector<JournalEntry> journal(Kind kind) const {
        auto entries = chip.journal().entries();
        std::erase_if(entries, [&](auto const& entry) { return entry.kind != kind; });
        return entries;
    }

    DigestReceiver receiver;  // outlives the chip, whose thread may be calling it to the end
    SoftChip chip;
};

}  // namespace SoftChip
