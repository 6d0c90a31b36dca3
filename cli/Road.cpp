#include "cli/Road.h"

#include <algorithm>
#include <utility>

#include "Trace/Trace.h"

namespace Cli {

Road::Road(Now now) : now_(std::move(now)), start_(now_()) {
    Trace::tapIs(&Road::heard, this);
}

Road::~Road() {
    Trace::tapIs(nullptr, nullptr);
}

void Road::start() {
    std::scoped_lock const lock(mutex_);
    passages_.clear();
    start_ = now_();
}

std::vector<Passage> Road::take() {
    std::scoped_lock const lock(mutex_);
    return std::exchange(passages_, {});
}

void Road::heard(void* road, std::string_view handle, unsigned level, std::string_view text) {
    auto& self = *static_cast<Road*>(road);
    std::scoped_lock const lock(self.mutex_);
    auto const same = std::ranges::find_if(self.passages_, [&](Passage const& passage) {
        return passage.text == text && passage.handle == handle;
    });
    if (same != self.passages_.end()) {
        ++same->times;
    } else {
        self.passages_.push_back({.since = self.now_() - self.start_,
                                  .handle = std::string(handle),
                                  .level = level,
                                  .text = std::string(text)});
    }
}

}  // namespace Cli
