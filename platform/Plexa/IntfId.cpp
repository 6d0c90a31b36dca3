#include "Plexa/IntfId.h"

#include <array>
#include <charconv>

namespace Plexa {
namespace {

constexpr std::string_view physicalPrefix = "Ethernet";
constexpr std::string_view lagPrefix = "Lag";
constexpr std::string_view vlanPrefix = "Vlan";
constexpr std::string_view cpuName = "Cpu";

constexpr unsigned firstShift = 34;
constexpr unsigned secondShift = 17;
constexpr std::uint64_t laterMask = (1U << 17) - 1;

bool takePrefix(std::string_view& text, std::string_view prefix) noexcept {
    if (!text.starts_with(prefix)) {
        return false;
    }
    text.remove_prefix(prefix.size());
    return true;
}

// Takes a decimal number without leading zeros from the front of `text`.
std::optional<unsigned> takeNumber(std::string_view& text, unsigned min, unsigned max) noexcept {
    unsigned number = 0;
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    auto const digits = static_cast<std::size_t>(end - text.data());
    bool const leadingZero = digits > 1 && text.front() == '0';
    if (error != std::errc() || leadingZero || number < min || number > max) {
        return std::nullopt;
    }
    text.remove_prefix(digits);
    return number;
}

// A number that is all of `text`.
std::optional<unsigned> wholeNumber(std::string_view text, unsigned min, unsigned max) noexcept {
    auto const number = takeNumber(text, min, max);
    return text.empty() ? number : std::nullopt;
}

// The numbers of a physical port's name behind its prefix, packed.
std::optional<std::uint64_t> physicalNumbers(std::string_view text) noexcept {
    std::uint64_t packed = 0;
    for (unsigned const shift : {firstShift, secondShift, 0U}) {
        auto const number = takeNumber(text, 0, 65535);
        if (!number) {
            return std::nullopt;
        }
        packed |= static_cast<std::uint64_t>(*number + (shift == firstShift ? 0 : 1)) << shift;
        if (text.empty()) {
            return packed;
        }
        if (!takePrefix(text, "/")) {
            return std::nullopt;
        }
    }
    return std::nullopt;
}

class NameWriter {
  public:
    explicit NameWriter(char* buffer) : begin_(buffer), end_(buffer) {}

    void text(std::string_view part) noexcept { end_ += part.copy(end_, part.size()); }
    void number(std::uint64_t value) noexcept { end_ = std::to_chars(end_, end_ + 20, value).ptr; }
    void physical(std::uint64_t packed) noexcept {
        text(physicalPrefix);
        number(packed >> firstShift);
        for (unsigned const shift : {secondShift, 0U}) {
            if (std::uint64_t const later = packed >> shift & laterMask) {
                text("/");
                number(later - 1);
            }
        }
    }
    std::size_t size() const noexcept { return static_cast<std::size_t>(end_ - begin_); }

  private:
    char* begin_;
    char* end_;
};

}  // namespace

std::optional<IntfId> IntfId::parentFromName(std::string_view name) noexcept {
    if (takePrefix(name, physicalPrefix)) {
        auto const numbers = physicalNumbers(name);
        return numbers ? std::optional(IntfId(Kind::physical, *numbers)) : std::nullopt;
    }
    if (takePrefix(name, lagPrefix)) {
        auto const number = wholeNumber(name, 1, 65535);
        return number ? std::optional(IntfId(Kind::lag, *number)) : std::nullopt;
    }
    return std::nullopt;
}

std::optional<IntfId> IntfId::fromName(std::string_view name) noexcept {
    if (name.empty()) {
        return IntfId();
    }
    if (name == cpuName) {
        return IntfId(Kind::cpu, 0);
    }
    if (std::string_view rest = name; takePrefix(rest, vlanPrefix)) {
        auto const number = wholeNumber(rest, 1, 4094);
        return number ? std::optional(IntfId(Kind::vlan, *number)) : std::nullopt;
    }
    std::size_t const dot = name.find('.');
    auto const parent = parentFromName(name.substr(0, dot));
    if (!parent || dot == std::string_view::npos) {
        return parent;
    }
    auto const number = wholeNumber(name.substr(dot + 1), 1, 65535);
    return number ? std::optional(SubIntfId::subIntfId(*parent, *number)) : std::nullopt;
}

bool IntfId::nameIs(std::string_view name) noexcept {
    auto const id = fromName(name);
    if (id) {
        *this = *id;
    }
    return id.has_value();
}

std::size_t IntfId::nameTo(char* buffer) const noexcept {
    NameWriter name(buffer);
    auto const parentKind = static_cast<Kind>(high_ >> parentKindShift & 0xf);
    Kind const base = kind() == Kind::subIntf ? parentKind : kind();
    switch (base) {
        case Kind::none:
        case Kind::subIntf:
            break;
        case Kind::physical:
            name.physical(high_ & numberMask);
            break;
        case Kind::lag:
            name.text(lagPrefix);
            name.number(high_ & numberMask);
            break;
        case Kind::vlan:
            name.text(vlanPrefix);
            name.number(high_ & numberMask);
            break;
        case Kind::cpu:
            name.text(cpuName);
            break;
    }
    if (kind() == Kind::subIntf) {
        name.text(".");
        name.number(low_);
    }
    return name.size();
}

std::string IntfId::stringValue() const {
    std::array<char, maxNameSize> buffer;
    return {buffer.data(), nameTo(buffer.data())};
}

IntfId SubIntfId::parentIntfId(IntfId const& id) noexcept {
    if (!isSubIntfId(id)) {
        return {};
    }
    auto const kind = static_cast<IntfId::Kind>(id.high_ >> IntfId::parentKindShift & 0xf);
    return {kind, id.high_ & IntfId::numberMask};
}

IntfId SubIntfId::subIntfId(IntfId const& parent, unsigned number) noexcept {
    bool const parentFits =
        parent.kind() == IntfId::Kind::physical || parent.kind() == IntfId::Kind::lag;
    if (!parentFits || number < 1 || number > 65535) {
        return {};
    }
    auto const parentKind = static_cast<std::uint64_t>(parent.kind()) << IntfId::parentKindShift;
    IntfId id(IntfId::Kind::subIntf, parentKind | (parent.high_ & IntfId::numberMask));
    id.low_ = number;
    return id;
}

unsigned SubIntfId::number(IntfId const& id) noexcept {
    return static_cast<unsigned>(id.low_);
}

IntfId VlanIntfId::vlanIdToIntfId(std::uint16_t vlanId) noexcept {
    return vlanId >= 1 && vlanId <= 4094 ? IntfId(IntfId::Kind::vlan, vlanId) : IntfId();
}

std::uint16_t VlanIntfId::vlanId(IntfId const& id) noexcept {
    return isVlanIntfId(id) ? static_cast<std::uint16_t>(id.high_ & IntfId::numberMask) : 0;
}

}  // namespace Plexa
