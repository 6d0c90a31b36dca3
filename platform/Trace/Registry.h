// The handles of the process and what decides whether their statements are read at all.
// Internal to Trace.
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "Trace/Handle.h"

namespace Trace {

// Readers that want every statement, whatever its handle and level.
enum class Whole : unsigned { tap = 1, ring = 2 };

// One setting of VYNPT_TRACE.
struct TextSetting {
    std::string name;  // without the "*" that may end it
    bool isPrefix;
    LevelSet levels;

    bool concerns(std::string_view handleName) const noexcept {
        return isPrefix ? handleName.starts_with(name) : handleName == name;
    }
};

class Registry {
  public:
    // The one registry; never destroyed, since threads may trace until the process ends.
    static Registry& instance();

    Handle& handle(std::string_view name);
    void textLevelsIs(Handle& handle, LevelSet on, LevelSet off);
    void settingsIs(std::vector<TextSetting> const& settings);
    void wholeIs(Whole reader, bool present);

  private:
    Registry();
    LevelSet settingOf(std::string_view name) const noexcept;
    void update(Handle& handle, LevelSet text) const noexcept;

    std::mutex mutex_;
    std::map<std::string, std::unique_ptr<Handle>, std::less<>> handles_;
    std::vector<TextSetting> settings_;
    unsigned whole_;
};

}  // namespace Trace
