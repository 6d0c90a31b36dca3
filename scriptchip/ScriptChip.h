// The scripted chip: it does nothing by itself. It tells a listener of every call, gives back what
// it was told to, and delivers answers and digests when asked.
//
//     ScriptChip::CallLog log;
//     ScriptChip::ScriptChip chip(&log);
//     chip.sdkReturnIs(SdkFunction::genOnePkt, -5);       // the next one fails
//     chip.phase0Data()->answerIs(ethernet1, bytes);      // delivered at once
//     chip.counterIs(0, 1);
//     chip.digest({{.pktId = 1, .egrPort = 132}});        // the registered callback runs at once
//
// The script stays when a tracer is released and another one is made. The chip must outlive the
// tracer that uses it. Thread: the event thread; callbacks run on the caller's.
#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <initializer_list>
#include <map>
#include <optional>
#include <span>

#include "Vanta/Node.h"
#include "scriptchip/Listener.h"
#include "scriptchip/Phase0Data.h"
#include "sdkseam/Chip.h"
#include "sdkseam/DigestLayout.h"

namespace ScriptChip {

class ScriptChip final : public SdkSeam::Chip {
  public:
    // A chip behind `device`. `listener` may be null; it outlives the chip.
    // Errors: std::logic_error if the device has a chip already.
    explicit ScriptChip(Listener* listener = nullptr, VynId::VynDevId device = 0);
    ScriptChip(ScriptChip const&) = delete;
    ScriptChip& operator=(ScriptChip const&) = delete;
    ~ScriptChip();

    // Moves the chip to another device id. Errors: std::logic_error if that one is taken; the chip
    // is then behind none.
    void deviceIs(VynId::VynDevId device);
    VynId::VynDevId device() const noexcept { return device_; }

    // What the tracer is given beside the functions.
    Vanta::Ptr<Phase0Data> const& phase0Data() const noexcept { return phase0Data_; }
    Vanta::Ptr<SdkSeam::DigestLayout> const& digestLayout() const noexcept { return digestLayout_; }
    Vanta::Ptr<SdkSeam::LearnQuanta> const& learnQuanta() const noexcept { return learnQuanta_; }

    // What getPktCounters gives for a pipe from now on, 0 before. A list gives one value a read,
    // and its last value stays. A failing read counts as a read and gives the value too.
    void counterIs(std::uint32_t pipe, std::uint64_t value) { counterIs(pipe, {&value, 1}); }
    // Precondition: `values` is not empty.
    void counterIs(std::uint32_t pipe, std::span<std::uint64_t const> values);

    // Of the calls of a function, the next `after` return 0, the `times` after those `rc`, then 0
    // again. This replaces what was scripted for the function before; `times` 0 only cancels that.
    void sdkReturnIs(SdkSeam::SdkFunction function, p4_pd_status_t rc, std::uint32_t times = 1,
                     std::uint32_t after = 0) noexcept;

    // Calls the registered callback with one learn message of these entries (at most 65535), whose
    // first 8 bytes are the device, then zeros; returns what the callback returns. Nothing happens
    // without a callback.
    std::optional<p4_pd_status_t> digest(std::span<SdkSeam::TraceDigest const> entries);
    std::optional<p4_pd_status_t> digest(std::initializer_list<SdkSeam::TraceDigest> entries) {
        return digest(std::span(entries.begin(), entries.size()));
    }
    // Whether a callback is registered. A failing registration registers none; a deregistration
    // removes the callback whatever it returns.
    bool hasCallback() const noexcept { return bool(receiver_); }

    void call(SdkSeam::SdkCall& call) override;

  private:
    struct Script {
        std::uint32_t after = 0;
        std::uint32_t times = 0;
        p4_pd_status_t rc = 0;
    };

    p4_pd_status_t nextReturn(SdkSeam::SdkFunction function) noexcept;
    std::uint64_t nextCount(std::uint32_t pipe);

    Listener* listener_;
    VynId::VynDevId device_;
    Vanta::Ptr<Phase0Data> phase0Data_;
    Vanta::Ptr<SdkSeam::DigestLayout> digestLayout_;
    Vanta::Ptr<SdkSeam::LearnQuanta> learnQuanta_;
    std::map<std::uint32_t, std::deque<std::uint64_t>> counters_;
    std::array<Script, SdkSeam::allSdkFunctions.size()> scripts_;
    SdkSeam::DigestReceiver receiver_;
    std::optional<SdkSeam::Registration> registration_;
};

}  // namespace ScriptChip
