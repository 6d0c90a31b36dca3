#include "switchfile/JsonDocument.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <functional>
#include <limits>
#include <memory>
#include <nlohmann/json.hpp>
#include <utility>

namespace SwitchFile {
namespace {

constexpr std::size_t blockSize = std::size_t{64} * 1024;
constexpr std::size_t longestShown = 60;

// A message is one line, whatever the text holds.
void appendPrintable(std::string& out, char c) {
    auto const byte = static_cast<unsigned char>(c);
    if (byte >= 0x20 && byte != 0x7f) {
        out += c;
        return;
    }
    std::array<char, 8> escape{};
    std::snprintf(escape.data(), escape.size(), "\\u%04x", unsigned{byte});
    out += escape.data();
}

std::string quoted(std::string_view text) {
    std::string out = "\"";
    for (char const c : text.substr(0, longestShown)) {
        appendPrintable(out, c);
    }
    if (text.size() > longestShown) {
        // A character of several bytes is shown whole or not at all.
        while (!out.empty() && (static_cast<unsigned char>(out.back()) & 0xC0U) == 0x80U) {
            out.pop_back();
        }
        if (static_cast<unsigned char>(out.back()) >= 0xC0U) {
            out.pop_back();
        }
        out += "...";
    }
    return out + "\"";
}

// A JSON pointer's step: "~" and "/" have escapes of their own.
void appendStep(std::string& pointer, std::string_view name) {
    pointer += '/';
    for (char const c : name) {
        if (c == '~') {
            pointer += "~0";
        } else if (c == '/') {
            pointer += "~1";
        } else {
            appendPrintable(pointer, c);
        }
    }
}

std::string lineAndColumn(std::string_view text, std::size_t offset) {
    std::string_view const before = text.substr(0, offset);
    std::size_t const line =
        1 + static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n'));
    std::size_t const lastBreak = before.rfind('\n');
    std::size_t const column =
        lastBreak == std::string_view::npos ? offset + 1 : offset - lastBreak;
    return std::to_string(line) + ":" + std::to_string(column);
}

// The library's text without its error number, its position and its copy of the input.
std::string reason(std::string_view what) {
    std::string text(what);
    for (std::string_view const mark : {"] ", "parse error at line "}) {
        if (std::size_t const at = text.find(mark); at != std::string::npos) {
            text.erase(0, at + mark.size());
        }
    }
    if (std::size_t const colon = text.find(": "); text.find("column ") < colon) {
        text.erase(0, colon + 2);
    }
    std::size_t const copy = text.find("; last read: ");
    if (copy != std::string::npos) {
        std::size_t const after = text.rfind("; expected ");
        bool const more = after != std::string::npos && after > copy;
        text = text.substr(0, copy) + (more ? text.substr(after) : "");
    }
    return text.find("expected") == std::string::npos ? text + "; expected a JSON value" : text;
}

// Where the token that ends before `end` starts.
std::size_t tokenStart(std::string_view text, std::size_t end) {
    auto const isWord = [](char c) {
        return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '-' || c == '+' || c == '.';
    };
    std::size_t at = end - 1;
    if (text[at] == '"') {
        do {
            at = at == 0 ? 0 : text.rfind('"', at - 1);
        } while (at != 0 && at != std::string_view::npos && text[at - 1] == '\\');
        return at == std::string_view::npos ? end - 1 : at;
    }
    while (at > 0 && isWord(text[at]) && isWord(text[at - 1])) {
        --at;
    }
    return at;
}

// Where the parser stopped. `position` counts the bytes read: up to the end of a token that is in
// the wrong place, or up to the byte that makes no token.
std::size_t offsetOf(std::string_view text, std::size_t position, std::string_view what) {
    if (position == 0 || position > text.size() ||
        what.find("unexpected end of input") != std::string_view::npos) {
        return text.size();
    }
    bool const wholeToken = what.find("unexpected ") != std::string_view::npos ||
                            what.find("number overflow") != std::string_view::npos;
    return wholeToken ? tokenStart(text, position) : position - 1;
}

}  // namespace

// Receives the parser's events; the parser itself keeps no tree.
class JsonDocument::Builder : public nlohmann::json_sax<nlohmann::json> {
  public:
    Builder(JsonDocument& document, std::string_view text) : document_(document), text_(text) {}

    bool null() override { return add(JsonNode::Kind::null); }
    bool boolean(bool value) override { return add(JsonNode::Kind::boolean, value ? 1 : 0); }
    bool number_integer(number_integer_t value) override {
        return add(JsonNode::Kind::integer, value);
    }
    bool number_unsigned(number_unsigned_t value) override {
        if (value > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
            return add(JsonNode::Kind::number, 0, std::to_string(value));
        }
        return add(JsonNode::Kind::integer, static_cast<std::int64_t>(value));
    }
    bool number_float(number_float_t, string_t const& token) override {
        return add(JsonNode::Kind::number, 0, token);
    }
    bool string(string_t& value) override { return add(JsonNode::Kind::text, 0, value); }
    bool binary(binary_t&) override { return false; }
    bool start_object(std::size_t) override { return open(JsonNode::Kind::object); }
    bool start_array(std::size_t) override { return open(JsonNode::Kind::list); }
    bool end_object() override { return close(); }
    bool end_array() override { return close(); }
    bool key(string_t& name) override {
        name_ = document_.keep(name);
        return true;
    }

    bool parse_error(std::size_t position, std::string const&,
                     nlohmann::detail::exception const& error) override {
        std::size_t const offset = offsetOf(text_, position, error.what());
        throw InputError(document_.fileName_ + ":" + lineAndColumn(text_, offset) + ": " +
                         reason(error.what()));
    }

  private:
    bool add(JsonNode::Kind kind, std::int64_t integer = 0, std::string_view text = {}) {
        if (document_.nodes_.size() >= std::numeric_limits<std::uint32_t>::max() - 1) {
            throw InputError(document_.fileName_ + ": too many values");
        }
        if (!open_.empty()) {
            ++document_.nodes_[open_.back()].count;
        }
        Stored node;
        node.name = std::exchange(name_, {});
        node.text = document_.keep(text);
        node.integer = integer;
        node.kind = kind;
        document_.nodes_.push_back(node);
        return true;
    }
    bool open(JsonNode::Kind kind) {
        auto const index = static_cast<std::uint32_t>(document_.nodes_.size());
        add(kind);
        open_.push_back(index);
        return true;
    }
    bool close() {
        Stored& node = document_.nodes_[open_.back()];
        node.span = static_cast<std::uint32_t>(document_.nodes_.size()) - open_.back();
        open_.pop_back();
        return true;
    }

    JsonDocument& document_;
    std::string_view text_;
    std::string_view name_;
    std::vector<std::uint32_t> open_;
};

JsonDocument::JsonDocument(std::string_view text, std::string fileName)
    : fileName_(std::move(fileName)) {
    nodes_.reserve(text.size() / 16 + 1);
    Builder builder(*this, text);
    nlohmann::json::sax_parse(text.begin(), text.end(), &builder);
    refuseRepeatedMembers();
}

std::string_view JsonDocument::keep(std::string_view text) {
    if (text.empty()) {
        return {};
    }
    if (blocks_.empty() || blocks_.back().capacity() - blocks_.back().size() < text.size()) {
        blocks_.emplace_back().reserve(std::max(blockSize, text.size()));
    }
    std::string& block = blocks_.back();
    std::size_t const at = block.size();
    block.append(text);
    return std::string_view(block).substr(at);
}

void JsonDocument::refuseRepeatedMembers() const {
    // Open addressing over node numbers, one table for all objects: most objects are small, and a
    // large one (a table of routes) is looked through once.
    std::vector<std::uint32_t> table;
    std::hash<std::string_view> const hash;
    for (Stored const& node : nodes_) {
        if (node.kind != JsonNode::Kind::object || node.count < 2) {
            continue;
        }
        std::size_t slots = 4;
        while (slots < std::size_t{node.count} * 2) {
            slots *= 2;
        }
        table.assign(slots, 0);
        auto const object = static_cast<std::uint32_t>(&node - nodes_.data());
        for (JsonNode const member : JsonNode(this, object)) {
            std::size_t slot = hash(member.name()) & (slots - 1);
            while (table[slot] != 0) {
                if (nodes_[table[slot]].name == member.name()) {
                    throw member.error("repeated member: expected each name once, got " +
                                       quoted(member.name()) + " again");
                }
                slot = (slot + 1) & (slots - 1);
            }
            table[slot] = member.index_;
        }
    }
}

JsonNode::Kind JsonNode::kind() const {
    return document_->nodes_[index_].kind;
}

std::string_view JsonNode::name() const {
    return document_->nodes_[index_].name;
}

bool JsonNode::boolean() const {
    if (kind() != Kind::boolean) {
        throw expected("true or false");
    }
    return document_->nodes_[index_].integer != 0;
}

std::string_view JsonNode::text(std::string_view what) const {
    if (kind() != Kind::text) {
        throw expected(what);
    }
    return document_->nodes_[index_].text;
}

std::int64_t JsonNode::integer(std::int64_t least, std::int64_t most, std::string_view what) const {
    std::int64_t const value = document_->nodes_[index_].integer;
    if (kind() != Kind::integer || value < least || value > most) {
        throw expected(std::string(what) + " from " + std::to_string(least) + " to " +
                       std::to_string(most));
    }
    return value;
}

JsonNode const& JsonNode::object() const {
    if (!isObject()) {
        throw expected("an object");
    }
    return *this;
}

JsonNode const& JsonNode::list() const {
    if (!isList()) {
        throw expected("a list");
    }
    return *this;
}

JsonNode JsonNode::member(std::string_view name) const {
    for (JsonNode const value : *this) {
        if (value.name() == name) {
            return value;
        }
    }
    return {};
}

JsonNode::Iterator JsonNode::begin() const {
    return Iterator(JsonNode(document_, index_ + 1));
}

JsonNode::Iterator JsonNode::end() const {
    return Iterator(JsonNode(document_, index_ + document_->nodes_[index_].span));
}

JsonNode::Iterator& JsonNode::Iterator::operator++() {
    at_.index_ += at_.document_->nodes_[at_.index_].span;
    return *this;
}

std::size_t JsonNode::size() const {
    return document_->nodes_[index_].count;
}

std::string JsonNode::path() const {
    std::string pointer;
    JsonNode at = document_->root();
    while (at.index_ != index_) {
        std::size_t position = 0;
        for (JsonNode const child : at) {
            if (index_ < child.index_ + document_->nodes_[child.index_].span) {
                appendStep(pointer, at.isList() ? std::to_string(position) : child.name());
                at = child;
                break;
            }
            ++position;
        }
    }
    return pointer.empty() ? "/" : pointer;
}

std::string JsonNode::shown() const {
    auto const& node = document_->nodes_[index_];
    switch (node.kind) {
        case Kind::null:
            return "null";
        case Kind::boolean:
            return node.integer != 0 ? "true" : "false";
        case Kind::integer:
            return std::to_string(node.integer);
        case Kind::number:
            return std::string(node.text.substr(0, longestShown));
        case Kind::text:
            return quoted(node.text);
        case Kind::list:
            return "a list";
        case Kind::object:
            return "an object";
    }
    return {};
}

InputError JsonNode::error(std::string_view problem) const {
    return InputError(document_->fileName_ + ": " + path() + ": " + std::string(problem));
}

InputError JsonNode::expected(std::string_view what) const {
    return expected(what, shown());
}

InputError JsonNode::expected(std::string_view what, std::string_view got) const {
    return error("expected " + std::string(what) + ", got " + std::string(got));
}

std::string JsonNode::shownName() const {
    return quoted(name());
}

std::string readWholeFile(std::string const& path) {
    struct Closer {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    std::unique_ptr<std::FILE, Closer> owned;
    std::FILE* file = stdin;
    if (path != "-") {
        owned.reset(std::fopen(path.c_str(), "rbe"));
        file = owned.get();
    }
    if (file == nullptr) {
        throw InputError(path + ": cannot be opened: " + std::strerror(errno));
    }
    std::string text;
    std::array<char, 65536> buffer{};
    while (std::size_t const got = std::fread(buffer.data(), 1, buffer.size(), file)) {
        text.append(buffer.data(), got);
    }
    if (std::ferror(file) != 0) {
        throw InputError(path + ": cannot be read: " + std::strerror(errno));
    }
    return text;
}

}  // namespace SwitchFile
