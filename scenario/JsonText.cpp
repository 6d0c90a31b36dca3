#include "scenario/JsonText.h"

#include "Vanta/Bytes.h"

namespace Scenario {
namespace {

constexpr unsigned char firstPrintable = 0x20;

// The letter of a two-character escape, or 0.
char shortEscape(char c) noexcept {
    switch (c) {
        case '\b':
            return 'b';
        case '\f':
            return 'f';
        case '\n':
            return 'n';
        case '\r':
            return 'r';
        case '\t':
            return 't';
        case '"':
        case '\\':
            return c;
        default:
            return 0;
    }
}

}  // namespace

void appendJsonText(std::string& out, std::string_view text) {
    static constexpr char digits[] = "0123456789abcdef";
    out.push_back('"');
    for (char const c : text) {
        auto const code = static_cast<unsigned char>(c);
        if (char const letter = shortEscape(c)) {
            out.push_back('\\');
            out.push_back(letter);
        } else if (code < firstPrintable) {
            out.append("\\u00");
            out.push_back(digits[code >> 4]);
            out.push_back(digits[code & 0xf]);
        } else {
            out.push_back(c);
        }
    }
    out.push_back('"');
}

std::string jsonText(std::string_view text) {
    std::string out;
    appendJsonText(out, text);
    return out;
}

void JsonWriter::separate() {
    if (!first_) {
        out_.push_back(',');
    }
    first_ = false;
}

JsonWriter& JsonWriter::beginObject() {
    separate();
    out_.push_back('{');
    first_ = true;
    return *this;
}

JsonWriter& JsonWriter::endObject() {
    out_.push_back('}');
    first_ = false;
    return *this;
}

JsonWriter& JsonWriter::beginList() {
    separate();
    out_.push_back('[');
    first_ = true;
    return *this;
}

JsonWriter& JsonWriter::endList() {
    out_.push_back(']');
    first_ = false;
    return *this;
}

JsonWriter& JsonWriter::name(std::string_view name) {
    separate();
    appendJsonText(out_, name);
    out_.push_back(':');
    first_ = true;  // the value follows without a comma
    return *this;
}

JsonWriter& JsonWriter::text(std::string_view value) {
    separate();
    appendJsonText(out_, value);
    return *this;
}

JsonWriter& JsonWriter::flag(bool value) {
    separate();
    out_.append(value ? "true" : "false");
    return *this;
}

JsonWriter& JsonWriter::signedNumber(std::int64_t value) {
    separate();
    out_.append(std::to_string(value));
    return *this;
}

JsonWriter& JsonWriter::unsignedNumber(std::uint64_t value) {
    separate();
    out_.append(std::to_string(value));
    return *this;
}

JsonWriter& JsonWriter::hex(std::span<std::uint8_t const> bytes) {
    return text(Vanta::hexText(bytes));
}

JsonWriter& JsonWriter::null() {
    separate();
    out_.append("null");
    return *this;
}

}  // namespace Scenario
