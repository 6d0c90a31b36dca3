// Trace handles: one a module, named after it, with the levels at which its messages are wanted as
// text.
//
// A handle is made at its first mention and lives as long as the process, so modules keep a
// reference. Text levels start as the environment variable VYNPT_TRACE says, also for handles that
// are made later:
//
//     VYNPT_TRACE="VynPtSm/0-4,VynPtPktGenSm/*,VynPt*/1+2"
//
// is a list of settings joined by commas; each is a handle's name, a slash and levels as
// LevelSet::parse reads them. A name that ends in "*" stands for every name that starts so, "*"
// alone for all. Settings add up. A setting that cannot be read is reported on standard error with
// its position in the list, and left out.
//
// Threads: everything here may be called from any thread at any time.
#pragma once

#include <atomic>
#include <optional>
#include <string>
#include <string_view>

#include "Trace/Levels.h"
#include "VynExport.h"

namespace Trace {

class Handle {
  public:
    Handle(Handle const&) = delete;
    Handle& operator=(Handle const&) = delete;

    std::string const& name() const noexcept { return name_; }

    // Levels whose messages go to the text trace.
    LevelSet textLevels() const noexcept {
        return LevelSet::fromBits(text_.load(std::memory_order_relaxed));
    }

    // Replaces the set of text levels: LevelSet::all(), LevelSet(), LevelSet::range(0, 4).
    VYN_EXPORT void textLevelsIs(LevelSet levels);

    // Adds one level to the set, or takes it out.
    VYN_EXPORT void textLevelIs(unsigned level, bool enabled);

    // Whether anything reads a message of this level: the text trace, the ring or the tap.
    bool isRead(Level level) const noexcept {
        return read_.load(std::memory_order_relaxed) >> level.number() & 1u;
    }

  private:
    friend class Registry;
    explicit Handle(std::string_view name) : name_(name) {}

    std::string const name_;
    std::atomic<std::uint32_t> read_ = 0;
    std::atomic<std::uint32_t> text_ = 0;
};

// The handle of that name; the same object for the same name in the whole process.
// Errors: std::bad_alloc.
VYN_EXPORT Handle& handle(std::string_view name);

// Adds settings, written as in VYNPT_TRACE, to the levels of handles present and future. Returns
// nothing, or what is wrong with the first setting that cannot be read; then no setting is taken.
// Errors: std::bad_alloc.
[[nodiscard]] VYN_EXPORT std::optional<std::string> textSettingsAre(std::string_view settings);

}  // namespace Trace
