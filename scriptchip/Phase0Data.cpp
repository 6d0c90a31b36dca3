#include "scriptchip/Phase0Data.h"

#include <utility>

namespace ScriptChip {

Vanta::Ptr<Phase0Data> Phase0Data::Phase0DataIs(Listener* listener) {
    return Vanta::makeNode<Phase0Data>(listener);
}

void Phase0Data::configIs(Plexa::IntfId const& intf) {
    if (listener_ != nullptr) {
        listener_->phase0ConfigIs(intf);
    }
}

void Phase0Data::configDel(Plexa::IntfId const& intf) {
    if (listener_ != nullptr) {
        listener_->phase0ConfigDel(intf);
    }
}

void Phase0Data::answerIs(Plexa::IntfId const& intf, Vanta::Bytes data, std::uint32_t status) {
    responseIs(intf, {std::move(data), status});
    publishResponse(intf);
}

bool Phase0Data::answerDel(Plexa::IntfId const& intf) {
    bool const removed = responseDel(intf);
    if (removed) {
        publishResponse(intf);
    }
    return removed;
}

}  // namespace ScriptChip
