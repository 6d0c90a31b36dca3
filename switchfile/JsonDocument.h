// A JSON text as a tree that remembers where everything stands.
//
// The tree keeps what a plain JSON value forgets: members in the order of the file, and for each
// value its position in the text, so that a contradiction found long after reading can still be
// named by path. An object with two members of one name is refused; they are never merged.
//
// A JsonDocument neither copies nor moves; a JsonNode is a handle of two words that is valid as long
// as its document lives. Threads: any one thread at a time.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "switchfile/InputError.h"

namespace SwitchFile {

class JsonDocument;

class JsonNode {
  public:
    enum class Kind : std::uint8_t { null, boolean, integer, number, text, list, object };

    // Handles of the elements of a list or of the members of an object, in file order.
    class Iterator;

    // No value at all, which member() returns for a member that is not there.
    JsonNode() = default;
    explicit operator bool() const { return document_ != nullptr; }

    Kind kind() const;
    bool isText() const { return kind() == Kind::text; }
    bool isList() const { return kind() == Kind::list; }
    bool isObject() const { return kind() == Kind::object; }

    // The member's name where the value is a member, else empty.
    std::string_view name() const;

    // The value as that type. Errors: InputError "expected `what`, got ..." for another kind, and
    // for an integer outside [least, most].
    bool boolean() const;
    std::string_view text(std::string_view what = "a text") const;
    std::int64_t integer(std::int64_t least, std::int64_t most, std::string_view what) const;

    // The same value. Errors: InputError unless it is an object (a list).
    JsonNode const& object() const;
    JsonNode const& list() const;

    // The object's member of that name, or no value. Linear in the number of members.
    JsonNode member(std::string_view name) const;

    // Elements or members below this value; none for a scalar.
    Iterator begin() const;
    Iterator end() const;
    std::size_t size() const;

    // The value's JSON pointer, "/" for the whole document. Linear in the document.
    std::string path() const;

    // The value as an error message shows it: a scalar as it is, shortened, or "a list", "an
    // object".
    std::string shown() const;
    std::string shownName() const;

    // For throwing: "file: path: problem", and "file: path: expected what, got got", where `got` is
    // what shown() gives if it is left out.
    InputError error(std::string_view problem) const;
    InputError expected(std::string_view what) const;
    InputError expected(std::string_view what, std::string_view got) const;

  private:
    friend class JsonDocument;
    JsonNode(JsonDocument const* document, std::uint32_t index)
        : document_(document), index_(index) {}

    JsonDocument const* document_ = nullptr;
    std::uint32_t index_ = 0;
};

class JsonNode::Iterator {
  public:
    explicit Iterator(JsonNode at) : at_(at) {}
    JsonNode const& operator*() const { return at_; }
    JsonNode const* operator->() const { return &at_; }
    Iterator& operator++();
    bool operator==(Iterator const& other) const { return at_.index_ == other.at_.index_; }

  private:
    JsonNode at_;
};

// Invariant: nodes stand in the order of the text, a value before everything inside it, and `span`
// counts the value and everything inside it; so the next sibling of node i is node i + span.
class JsonDocument {
  public:
    // Reads `text`; `fileName` is for messages only.
    // Errors: InputError for what is no JSON text in UTF-8, for an object with two members of one
    // name, and for more than 2^32 - 2 values.
    JsonDocument(std::string_view text, std::string fileName);

    JsonDocument(JsonDocument&&) = delete;
    JsonDocument& operator=(JsonDocument&&) = delete;

    JsonNode root() const { return JsonNode(this, 0); }
    std::string const& fileName() const { return fileName_; }

  private:
    friend class JsonNode;
    class Builder;

    struct Stored {
        std::string_view name;
        std::string_view text;
        std::int64_t integer = 0;
        std::uint32_t span = 1;
        std::uint32_t count = 0;
        JsonNode::Kind kind = JsonNode::Kind::null;
    };

    std::string_view keep(std::string_view text);
    void refuseRepeatedMembers() const;

    std::string fileName_;
    std::vector<Stored> nodes_;
    // The texts of the nodes, in blocks that never move.
    std::vector<std::string> blocks_;
};

// The whole file's bytes, "-" being standard input.
// Errors: InputError "path: ..." when it cannot be read.
std::string readWholeFile(std::string const& path);

}  // namespace SwitchFile
