// The software chip: a switch with packet generators and trace digests, behind the SDK's functions.
//
// It registers for its device at the seam and refuses what a chip would refuse, with a status of
// its own for each reason (Sdk.h). What it accepts goes into one queue with the changes of its
// tables and is carried out in order; then the digests of all that was carried out together go out
// in as few messages as possible.
//
// Threaded: a thread of the chip's own does this. It owns the tables, and calls the digest
// callback. It sleeps while there is nothing to do, and ends in the destructor, before the chip
// leaves the seam; what it has not begun by then is dropped.
// Stepwise: there is no thread; step() does its work, so that runs can be repeated exactly.
//
// An exception that leaves a table change ends the process.
// Threads: acknowledgements any, everything else the event thread.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <thread>

#include "sdkseam/Chip.h"
#include "softchip/CommandQueue.h"
#include "softchip/DigestChannel.h"
#include "softchip/Explanations.h"
#include "softchip/Faults.h"
#include "softchip/Generator.h"
#include "softchip/Journal.h"
#include "softchip/Tables.h"

namespace SoftChip {

enum class Mode : std::uint8_t { threaded, stepwise };

struct Config {
    VynId::VynDevId device = 0;
    p4_pd_sess_hdl_t session = 1;  // the one session that is open
    Mode mode = Mode::threaded;
    std::size_t journalLimit = Journal::defaultLimit;
};

class SoftChip final : public SdkSeam::Chip {
  public:
    // Errors: std::logic_error if the device id is taken.
    explicit SoftChip(Config const& config);
    SoftChip(SoftChip const&) = delete;
    SoftChip& operator=(SoftChip const&) = delete;
    ~SoftChip();

    // A call of one of the SDK's functions, as VynSdk/VynSdk.h and PipeMgr/PipeMgr.h say. A call
    // that is refused or fails by order changes nothing, except for a deregistration that fails by
    // order. A deregistration returns when no callback runs; none will run later.
    void call(SdkSeam::SdkCall& call) override;

    // Has the tables changed, after the packets that were injected before. What `change` refers to
    // is used and destroyed on the chip's thread: no counted pointers, texts or bytes of the object
    // framework.
    void change(std::function<void(Tables&)> change);

    // Returns when everything that was asked for before has been done and its digests have gone
    // out. In stepwise mode it steps until then. Not from inside the callback.
    void drain();
    // Stepwise mode: does what the thread would do when it wakes. False if there was nothing to do.
    bool step();
    // Threaded mode: whether the thread sleeps, having nothing to do.
    bool asleep() const { return queue_.asleep(); }

    // Faults to order. Held digests are released after the packets that were injected before.
    Faults& faults() { return faults_; }
    void releaseHeld() { queue_.pushReleaseHeld(); }
    // A pipe's packet generator, 0 to 3: its state, and the faults of its counter.
    Generator& generator(unsigned pipe) { return generators_.at(pipe); }

    Journal const& journal() const { return journal_; }
    Explanations& explanations() { return explanations_; }
    // Messages that are not acknowledged.
    std::size_t outstandingMessages() const { return channel_.outstanding(); }

  private:
    Status check(SdkSeam::SdkCall const& call) const;
    Status checkPipe(SdkSeam::SdkCall const& call) const;
    Status checkApp(SdkSeam::SdkCall const& call) const;
    Status checkInjection(SdkSeam::SdkCall const& call) const;
    Status checkDigest(SdkSeam::SdkCall const& call) const;
    bool accept(SdkSeam::SdkCall& call);

    void run();
    void carryOut(std::span<Command> commands);
    void carryOut(Command& command);
    void changeTables(Command& command);
    void inject(Command const& command);

    Config const config_;
    Journal journal_;
    Faults faults_;
    Explanations explanations_;
    std::array<Generator, pipeCount> generators_;
    Tables tables_;            // used by the chip's thread alone
    Explanation explanation_;  // the same; of the packet that is under way
    CommandQueue queue_;
    DigestChannel channel_;
    SdkSeam::Registration registration_;
    std::thread thread_;
};

}  // namespace SoftChip
