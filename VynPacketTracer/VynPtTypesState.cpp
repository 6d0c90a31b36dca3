// PktGenState and its text form.
#include <algorithm>
#include <array>
#include <cctype>

#include "Kel/Error.h"
#include "Vanta/Assert.h"
#include "VynPacketTracer/VynPtTypes.h"

namespace VynPacketTracer {
namespace {

constexpr std::array<std::string_view, 7> names{
    "init", "idle", "waitPhase0Data", "phase0DataReady", "waitPktSent", "reset", "error"};

std::string_view nameOf(PktGenState state) {
    return names[static_cast<std::size_t>(state)];
}

bool isNameCharacter(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0;
}

}  // namespace

PktGenState PktGenStateInstance(unsigned number) {
    if (number >= names.size()) {
        throw Kel::RangeError("PktGenState", "value",
                              "PktGenState has no value " + std::to_string(number));
    }
    return static_cast<PktGenState>(number);
}

PktGenState PktGenStateInstance(Vanta::String const& name) {
    auto const found = std::ranges::find(names, name.view());
    if (found == names.end()) {
        throw Kel::RangeError("PktGenState", "value",
                              "PktGenState has no value named " + std::string(name.view()));
    }
    return static_cast<PktGenState>(found - names.begin());
}

Vanta::String stringValue(PktGenState state) {
    return nameOf(state);
}

bool sequenceToValue(Vanta::CharRange& range, PktGenState* state) {
    Vanta::assertThat(state != nullptr, "state != nullptr");
    char const* const end = std::find_if_not(range.begin, range.end, isNameCharacter);
    auto const found = std::ranges::find(names, std::string_view(range.begin, end));
    if (found == names.end()) {
        return false;
    }
    *state = static_cast<PktGenState>(found - names.begin());
    range.begin = end;
    return true;
}

std::ostream& operator<<(std::ostream& out, PktGenState const& state) {
    return out << nameOf(state);
}

Trace::Value traceValue(PktGenState state) noexcept {
    return Trace::Value::text(nameOf(state));
}

void reflectValue(Kel::AttributeSink& sink, PktGenState state) {
    sink.text(nameOf(state));
}

}  // namespace VynPacketTracer
