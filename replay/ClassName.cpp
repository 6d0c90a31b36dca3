#include "replay/ClassName.h"

#include <cxxabi.h>

#include <cstdlib>
#include <memory>

namespace Replay {

std::string classNameOf(std::type_info const& type) {
    int status = 0;
    std::unique_ptr<char, decltype(&std::free)> const demangled(
        abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), std::free);
    std::string name = status == 0 ? demangled.get() : type.name();
    name.erase(std::min(name.find('<'), name.size()));
    std::size_t const scope = name.rfind("::");
    return scope == std::string::npos ? name : name.substr(scope + 2);
}

}  // namespace Replay
