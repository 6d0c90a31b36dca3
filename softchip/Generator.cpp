#include "softchip/Generator.h"

namespace SoftChip {

void Generator::disableApp() noexcept {
    switch (state_) {
        case GeneratorState::on:
            state_ = GeneratorState::portOn;
            break;
        case GeneratorState::appOn:
            state_ = GeneratorState::off;
            break;
        case GeneratorState::off:
        case GeneratorState::portOn:
            break;
    }
}

void Generator::disablePort() noexcept {
    switch (state_) {
        case GeneratorState::on:
            state_ = GeneratorState::appOn;
            break;
        case GeneratorState::portOn:
            state_ = GeneratorState::off;
            break;
        case GeneratorState::off:
        case GeneratorState::appOn:
            break;
    }
}

std::uint64_t Generator::counter() const noexcept {
    return stalledAt_ ? *stalledAt_ : generated() + offset_;
}

void Generator::stalledIs(bool stalled) noexcept {
    if (stalled != stalledAt_.has_value()) {
        stalledAt_ = stalled ? std::optional(counter()) : std::nullopt;
    }
}

void Generator::counterIs(std::uint64_t value) noexcept {
    offset_ = value - generated();
    if (stalledAt_) {
        stalledAt_ = value;
    }
}

char const* text(GeneratorState state) {
    switch (state) {
        case GeneratorState::off:
            return "off";
        case GeneratorState::on:
            return "on";
        case GeneratorState::portOn:
            return "portOn";
        case GeneratorState::appOn:
            return "appOn";
    }
    return "?";
}

}  // namespace SoftChip
