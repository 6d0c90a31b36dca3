// The framework's errors. Each names the type, the attribute and the values concerned. If the
// type's reflection table has a number for the attribute, the error gives it too.
#pragma once

#include <exception>
#include <string>
#include <string_view>
#include <utility>

#include "Kel/Reflection.h"
#include "Vanta/Node.h"
#include "VynExport.h"

namespace Kel {

class VYN_EXPORT Error : public std::exception {
  public:
    char const* what() const noexcept override { return text_.c_str(); }
    std::string const& typeName() const noexcept { return typeName_; }
    std::string const& attribute() const noexcept { return attribute_; }

  protected:
    Error(std::string_view typeName, std::string_view attribute, std::string text)
        : typeName_(typeName), attribute_(attribute), text_(std::move(text)) {}

  private:
    std::string typeName_;
    std::string attribute_;
    std::string text_;
};

// Create-or-fetch was called for an existing entry with other construction arguments. The text names
// the entry and never holds an address, so that it is the same in each run.
class VYN_EXPORT ReinstantiationError : public Error {
  public:
    using Object = Vanta::Ptr<Vanta::Node const>;

    // The attribute is a value; both are given as texts. `entry` is the entry for people, "request 1
    // of client noc".
    ReinstantiationError(TypeInfo const& type, std::string_view attribute, std::string_view entry,
                         std::string_view oldValue, std::string_view newValue);
    // The attribute is an object that counts by its identity; either may be null.
    ReinstantiationError(TypeInfo const& type, std::string_view attribute, std::string_view entry,
                         Object oldObject, Object newObject);

    unsigned attributeNumber() const noexcept { return attributeNumber_; }
    std::string const& entry() const noexcept { return entry_; }
    // What the entry was made with and what was given now; empty where the attribute is an object.
    std::string const& oldValue() const noexcept { return oldValue_; }
    std::string const& newValue() const noexcept { return newValue_; }
    // The same for an object, which lives as long as the error; null where the attribute is a
    // value.
    Object const& oldObject() const noexcept { return oldObject_; }
    Object const& newObject() const noexcept { return newObject_; }

  private:
    unsigned attributeNumber_;
    std::string entry_;
    std::string oldValue_;
    std::string newValue_;
    Object oldObject_;
    Object newObject_;
};

// The same for an attribute that is a plain value.
class VYN_EXPORT ReinstantiatingValueError : public ReinstantiationError {
  public:
    using ReinstantiationError::ReinstantiationError;
};

// A mutator was given null where an object is required.
class VYN_EXPORT NullArgumentError : public Error {
  public:
    NullArgumentError(std::string_view typeName, std::string_view attribute);
};

// A value outside the range of its type. The text is the type's own.
class VYN_EXPORT RangeError : public Error {
  public:
    RangeError(std::string_view typeName, std::string_view attribute, std::string_view text);
};

}  // namespace Kel
