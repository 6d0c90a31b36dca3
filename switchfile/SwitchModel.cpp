#include "switchfile/SwitchModel.h"

#include "switchfile/NumberText.h"

namespace SwitchFile {

Interface const* SwitchModel::interface(Plexa::IntfId const& id) const {
    auto const found = interfaceIndexes.find(id);
    return found == interfaceIndexes.end() ? nullptr : &interfaces[found->second];
}

Interface const* SwitchModel::entryPort(Interface const& intf) const {
    bool const isSubIntf = Plexa::SubIntfId::isSubIntfId(intf.id);
    Interface const* const port =
        isSubIntf ? interface(Plexa::SubIntfId::parentIntfId(intf.id)) : &intf;
    return port->id.kind() == Plexa::IntfId::Kind::physical ? port : nullptr;
}

std::uint16_t lagNumber(Plexa::IntfId const& lag) {
    std::string const name = lag.stringValue();
    return static_cast<std::uint16_t>(
        parseNumber(std::string_view(name).substr(3), 1, 65535).value_or(0));
}

}  // namespace SwitchFile
