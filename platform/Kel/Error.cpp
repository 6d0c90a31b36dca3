#include "Kel/Error.h"

namespace Kel {
namespace {

std::string reinstantiationText(std::string_view typeName, std::string_view attribute,
                                std::string_view oldValue, std::string_view newValue) {
    std::string text(typeName);
    text.append("::").append(attribute).append(" cannot change from ");
    text.append(oldValue).append(" to ").append(newValue);
    return text;
}

std::string nullArgumentText(std::string_view typeName, std::string_view attribute) {
    std::string text(typeName);
    return text.append("::").append(attribute).append(" given null");
}

}  // namespace

ReinstantiationError::ReinstantiationError(std::string_view typeName, std::string_view attribute,
                                           std::string_view oldValue, std::string_view newValue)
    : Error(typeName, attribute, reinstantiationText(typeName, attribute, oldValue, newValue)),
      oldValue_(oldValue),
      newValue_(newValue) {}

NullArgumentError::NullArgumentError(std::string_view typeName, std::string_view attribute)
    : Error(typeName, attribute, nullArgumentText(typeName, attribute)) {}

RangeError::RangeError(std::string_view typeName, std::string_view attribute, std::string_view text)
    : Error(typeName, attribute, std::string(text)) {}

}  // namespace Kel
