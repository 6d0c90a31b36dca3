// Bytes for the digest's socket, as the SDK's thread or a stream out of step may leave them. An
// input is a series of chunks: two bytes of size, little endian, and the bytes; each chunk is
// written at once and read to its end before the next one comes. The engine's results are compared
// with those of a plain decoder. Where the decoder predicts the end of the process, because of an
// invalid egress port, the engine gets only the bytes before that message.
#include <array>
#include <cstring>
#include <optional>
#include <vector>

#include "Target.h"
#include "VynPacketTracer/VynPtPktGenSm.h"
#include "scriptchip/ScriptChip.h"

namespace {

using Fuzz::check;

constexpr std::size_t headerSize = 10;
constexpr std::size_t entrySize = SdkSeam::digestEntryBytes;
constexpr unsigned answers = 8;

// Several answers share a packet id.
constexpr std::uint16_t pktIdOf(unsigned answer) {
    return static_cast<std::uint16_t>(answer / 2);
}

struct Answer {
    bool ready = false;
    bool copyToCpu = false;
    bool routed = false;
    bool dropped = false;
    std::uint16_t l2Domain = 0;
    std::uint8_t pipe = 0;
    std::uint16_t port = 456;
    bool operator==(Answer const&) const = default;
};
using Answers = std::array<Answer, answers>;

std::uint16_t u16(std::uint8_t const* bytes) {
    std::uint16_t value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

// The decoder. Each step does what the engine does when its socket is readable.
class Decoder {
  public:
    // False where the process would end; nothing of that message is then told.
    bool read(std::vector<std::uint8_t> const& chunk) {
        std::size_t at = 0;
        while (at < chunk.size()) {
            Answers const before = told;
            std::size_t const start = at;
            std::size_t const header = std::min(headerSize, chunk.size() - at);
            std::uint8_t const* const bytes = chunk.data() + at;
            at += header;
            if (header < headerSize) {
                continue;
            }
            std::size_t const len = u16(bytes + 8) * entrySize;
            if (len > 4096) {
                continue;
            }
            std::size_t const read = std::min(len, chunk.size() - at);
            std::uint8_t const* const entries = chunk.data() + at;
            at += read;
            for (std::size_t entry = 0; read == len && entry < len; entry += entrySize) {
                if (!take(entries + entry)) {
                    told = before;
                    good = start;
                    return false;
                }
            }
        }
        good = at;
        return true;
    }

    Answers told;
    std::size_t good = 0;  // bytes of the last chunk up to the message that ends the process

  private:
    bool take(std::uint8_t const* entry) {
        for (unsigned i = 0; i < answers; ++i) {
            if (u16(entry) != pktIdOf(i)) {
                continue;
            }
            std::uint16_t const port = u16(entry + 5);
            if (port > 456 && port != 511) {
                return false;
            }
            Answer& answer = told[i];
            answer.copyToCpu = entry[2] != 0;
            answer.l2Domain = u16(entry + 3);
            if (port != 511) {
                answer.pipe = static_cast<std::uint8_t>(port >> 7);
                answer.port = port;
            }
            answer.routed = entry[7] != 0;
            answer.dropped = entry[8] != 0;
            answer.ready = true;
        }
        return true;
    }
};

// One engine for all inputs: a stream that was read to its end leaves nothing in it.
class Bench {
  public:
    Bench() { loop_->turn(); }

    void begin() {
        status_->statusDelAll();
        for (unsigned i = 0; i < answers; ++i) {
            status_->statusIs({"noc", i})->pktIdIs(pktIdOf(i));
        }
    }
    void write(std::uint8_t const* data, std::size_t size) {
        if (size > 0) {
            check(::write(engine_->socketPairWriteDesc(), data, size) == static_cast<ssize_t>(size),
                  "the socket takes the chunk");
        }
        while (loop_->turn(Orb::TaskSchedulerRoot::Wait::zero())) {
        }
    }
    Answers told() const {
        Answers told;
        for (unsigned i = 0; i < answers; ++i) {
            auto const data = status_->status({"noc", i});
            told[i] = {data->ready(),
                       data->copyToCpu(),
                       data->routed(),
                       data->dropped(),
                       data->egrL2Domain(),
                       data->egrPortInfo().pipe(),
                       data->egrPortInfo().port().value()};
        }
        return told;
    }

  private:
    ScriptChip::ScriptChip chip_;
    Vanta::Ptr<Orb::TaskSchedulerRoot> loop_ = Orb::TaskSchedulerRoot::TaskSchedulerRootIs();
    Vanta::Ptr<VynPacketTracer::PktGenConfig> config_ = VynPacketTracer::pktGenConfigFactory();
    Vanta::Ptr<VynPacketTracer::PktGenStatus> status_ = VynPacketTracer::pktGenStatusFactory();
    Vanta::Ptr<VynPacketTracer::PktGenSm> engine_ =
        VynPacketTracer::pktGenSmFactory(config_, chip_.phase0Data(), status_, 1, chip_.device(),
                                         true, chip_.learnQuanta(), chip_.digestLayout(), loop_);
};

}  // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static Bench bench;
    bench.begin();
    Decoder decoder;
    bool lives = true;
    for (std::size_t at = 0; lives && at + 2 <= size;) {
        std::size_t const length = std::min<std::size_t>(u16(data + at), size - at - 2);
        std::vector<std::uint8_t> const chunk(data + at + 2, data + at + 2 + length);
        at += 2 + length;
        lives = decoder.read(chunk);
        bench.write(chunk.data(), decoder.good);
    }
    check(bench.told() == decoder.told, "the engine decodes as the plain decoder does");
    return 0;
}
