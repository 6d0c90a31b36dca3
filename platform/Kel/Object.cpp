#include "Kel/Object.h"

namespace Kel {

Object::Object() noexcept = default;
Object::~Object() = default;

}  // namespace Kel
