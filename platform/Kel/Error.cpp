#include "Kel/Error.h"

#include <algorithm>

namespace Kel {
namespace {

unsigned numberOf(TypeInfo const& type, std::string_view attribute) noexcept {
    auto const found = std::ranges::find(type.attributes, attribute, &AttributeInfo::name);
    return found != type.attributes.end() ? found->number : 0;
}

std::string reinstantiationText(TypeInfo const& type, std::string_view attribute,
                                std::string_view oldValue, std::string_view newValue) {
    std::string text(type.name);
    text.append("::").append(attribute);
    text.append(" (attribute ").append(std::to_string(numberOf(type, attribute)));
    text.append(") cannot change from ").append(oldValue).append(" to ").append(newValue);
    return text;
}

std::string nullArgumentText(std::string_view typeName, std::string_view attribute) {
    std::string text(typeName);
    return text.append("::").append(attribute).append(" given null");
}

}  // namespace

ReinstantiationError::ReinstantiationError(TypeInfo const& type, std::string_view attribute,
                                           std::string_view oldValue, std::string_view newValue)
    : Error(type.name, attribute, reinstantiationText(type, attribute, oldValue, newValue)),
      attributeNumber_(numberOf(type, attribute)),
      oldValue_(oldValue),
      newValue_(newValue) {}

NullArgumentError::NullArgumentError(std::string_view typeName, std::string_view attribute)
    : Error(typeName, attribute, nullArgumentText(typeName, attribute)) {}

RangeError::RangeError(std::string_view typeName, std::string_view attribute, std::string_view text)
    : Error(typeName, attribute, std::string(text)) {}

}  // namespace Kel
