#include "cli/Road.h"

#include <algorithm>
#include <utility>

namespace Cli {

Road::Road(Now now) : now_(std::move(now)), start_(now_()) {}

void Road::start() {
    std::scoped_lock const lock(mutex_);
    passages_.clear();
    start_ = now_();
}

std::vector<Passage> Road::take() {
    std::scoped_lock const lock(mutex_);
    return std::exchange(passages_, {});
}

void Road::heard(std::string_view handle, unsigned level, std::string_view text) {
    std::scoped_lock const lock(mutex_);
    auto const same = std::ranges::find_if(passages_, [&](Passage const& passage) {
        return passage.text == text && passage.handle == handle;
    });
    if (same != passages_.end()) {
        ++same->times;
    } else {
        passages_.push_back({.since = now_() - start_,
                             .handle = std::string(handle),
                             .level = level,
                             .text = std::string(text)});
    }
}

}  // namespace Cli
