#include "Kel/Error.h"

#include <algorithm>

namespace Kel {
namespace {

unsigned numberOf(TypeInfo const& type, std::string_view attribute) noexcept {
    auto const found = std::ranges::find(type.attributes, attribute, &AttributeInfo::name);
    return found != type.attributes.end() ? found->number : 0;
}

std::string attributeText(TypeInfo const& type, std::string_view attribute,
                          std::string_view entry) {
    std::string text(type.name);
    text.append("::").append(attribute);
    text.append(" (attribute ").append(std::to_string(numberOf(type, attribute)));
    return text.append(") of ").append(entry);
}

std::string changeText(std::string_view oldValue, std::string_view newValue) {
    std::string text(" cannot change from ");
    return text.append(oldValue).append(" to ").append(newValue);
}

// Objects differ by identity, and an address would tell a reader nothing.
std::string_view changeText(bool oldIsNull, bool newIsNull) {
    if (newIsNull) {
        return " is null, which differs from the object that it was made with";
    }
    if (oldIsNull) {
        return " differs from null, which it was made with";
    }
    return " differs from the object that it was made with";
}

std::string nullArgumentText(std::string_view typeName, std::string_view attribute) {
    std::string text(typeName);
    return text.append("::").append(attribute).append(" given null");
}

}  // namespace

ReinstantiationError::ReinstantiationError(TypeInfo const& type, std::string_view attribute,
                                           std::string_view entry, std::string_view oldValue,
                                           std::string_view newValue)
    : Error(type.name, attribute,
            attributeText(type, attribute, entry).append(changeText(oldValue, newValue))),
      attributeNumber_(numberOf(type, attribute)),
      entry_(entry),
      oldValue_(oldValue),
      newValue_(newValue) {}

ReinstantiationError::ReinstantiationError(TypeInfo const& type, std::string_view attribute,
                                           std::string_view entry, Object oldObject,
                                           Object newObject)
    : Error(type.name, attribute,
            attributeText(type, attribute, entry).append(changeText(!oldObject, !newObject))),
      attributeNumber_(numberOf(type, attribute)),
      entry_(entry),
      oldObject_(std::move(oldObject)),
      newObject_(std::move(newObject)) {}

NullArgumentError::NullArgumentError(std::string_view typeName, std::string_view attribute)
    : Error(typeName, attribute, nullArgumentText(typeName, attribute)) {}

RangeError::RangeError(std::string_view typeName, std::string_view attribute, std::string_view text)
    : Error(typeName, attribute, std::string(text)) {}

}  // namespace Kel
