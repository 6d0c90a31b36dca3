#include "Trace/Handle.h"

#include <cstdio>
#include <cstdlib>

#include "Trace/Registry.h"
#include "Trace/Ringlog.h"

namespace Trace {
namespace {

std::optional<TextSetting> parseSetting(std::string_view text) {
    auto const slash = text.rfind('/');
    if (slash == 0 || slash == text.npos) {
        return std::nullopt;
    }
    auto const levels = LevelSet::parse(text.substr(slash + 1));
    auto name = text.substr(0, slash);
    bool const isPrefix = name.ends_with('*');
    name.remove_suffix(isPrefix ? 1 : 0);
    if (!levels || name.find('*') != name.npos) {
        return std::nullopt;
    }
    return TextSetting{std::string(name), isPrefix, *levels};
}

struct Parsed {
    std::vector<TextSetting> settings;
    std::optional<std::string> firstError;
};

std::string settingError(std::string_view setting, std::size_t column) {
    return "column " + std::to_string(column + 1) + ": \"" + std::string(setting) +
           "\": expected NAME/LEVELS, for example VynPtSm/0-4+7 or VynPt*/*";
}

// An empty setting, which a superfluous comma leaves, is ignored.
Parsed parseSettings(std::string_view text) {
    Parsed parsed;
    for (std::size_t start = 0, end = 0; start <= text.size(); start = end + 1) {
        end = std::min(text.find(',', start), text.size());
        auto const part = text.substr(start, end - start);
        if (auto setting = parseSetting(part)) {
            parsed.settings.push_back(std::move(*setting));
        } else if (!part.empty() && !parsed.firstError) {
            parsed.firstError = settingError(part, start);
        }
    }
    return parsed;
}

std::vector<TextSetting> settingsOfEnvironment() {
    char const* const text = std::getenv("VYNPT_TRACE");
    auto parsed = parseSettings(text ? text : "");
    if (parsed.firstError) {
        std::fprintf(stderr, "VYNPT_TRACE: %s\n", parsed.firstError->c_str());
    }
    return std::move(parsed.settings);
}

}  // namespace

Registry& Registry::instance() {
    static Registry* const registry = std::unique_ptr<Registry>(new Registry).release();
    return *registry;
}

Registry::Registry()
    : settings_(settingsOfEnvironment()),
      whole_(environmentNamesRing() ? static_cast<unsigned>(Whole::ring) : 0) {}

Handle& Registry::handle(std::string_view name) {
    std::lock_guard const lock(mutex_);
    auto found = handles_.find(name);
    if (found == handles_.end()) {
        std::unique_ptr<Handle> made(new Handle(name));
        update(*made, settingOf(name));
        found = handles_.emplace(made->name(), std::move(made)).first;
    }
    return *found->second;
}

void Registry::textLevelsIs(Handle& handle, LevelSet on, LevelSet off) {
    std::lock_guard const lock(mutex_);
    update(handle, handle.textLevels().without(off).with(on));
}

void Registry::settingsIs(std::vector<TextSetting> const& settings) {
    std::lock_guard const lock(mutex_);
    settings_.insert(settings_.end(), settings.begin(), settings.end());
    for (auto const& [name, handle] : handles_) {
        auto levels = handle->textLevels();
        for (auto const& setting : settings) {
            levels = setting.concerns(name) ? levels.with(setting.levels) : levels;
        }
        update(*handle, levels);
    }
}

void Registry::wholeIs(Whole reader, bool present) {
    std::lock_guard const lock(mutex_);
    auto const bit = static_cast<unsigned>(reader);
    whole_ = present ? whole_ | bit : whole_ & ~bit;
    for (auto const& [name, handle] : handles_) {
        update(*handle, handle->textLevels());
    }
}

LevelSet Registry::settingOf(std::string_view name) const noexcept {
    LevelSet levels;
    for (auto const& setting : settings_) {
        levels = setting.concerns(name) ? levels.with(setting.levels) : levels;
    }
    return levels;
}

void Registry::update(Handle& handle, LevelSet text) const noexcept {
    handle.text_.store(text.bits(), std::memory_order_relaxed);
    auto const read = whole_ ? LevelSet::all() : text;
    handle.read_.store(read.bits(), std::memory_order_relaxed);
}

void Handle::textLevelsIs(LevelSet levels) {
    Registry::instance().textLevelsIs(*this, levels, LevelSet::all());
}

void Handle::textLevelIs(unsigned level, bool enabled) {
    auto const changed = LevelSet::only(level);
    Registry::instance().textLevelsIs(*this, enabled ? changed : LevelSet(), changed);
}

Handle& handle(std::string_view name) {
    return Registry::instance().handle(name);
}

std::optional<std::string> textSettingsAre(std::string_view settings) {
    auto const parsed = parseSettings(settings);
    if (!parsed.firstError) {
        Registry::instance().settingsIs(parsed.settings);
    }
    return parsed.firstError;
}

}  // namespace Trace
