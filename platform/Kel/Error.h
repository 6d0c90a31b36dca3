// The framework's errors. Each names the type, the attribute and the values concerned; the attribute
// also by the number of the type's reflection table, where there is one.
#pragma once

#include <exception>
#include <string>
#include <string_view>

#include "Kel/Reflection.h"
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

// Create-or-fetch was called for an existing entry with other construction arguments.
class VYN_EXPORT ReinstantiationError : public Error {
  public:
    ReinstantiationError(TypeInfo const& type, std::string_view attribute,
                         std::string_view oldValue, std::string_view newValue);
    unsigned attributeNumber() const noexcept { return attributeNumber_; }
    std::string const& oldValue() const noexcept { return oldValue_; }
    std::string const& newValue() const noexcept { return newValue_; }

  private:
    unsigned attributeNumber_;
    std::string oldValue_;
    std::string newValue_;
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
