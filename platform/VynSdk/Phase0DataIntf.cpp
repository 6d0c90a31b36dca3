#include "VynSdk/Phase0DataIntf.h"

namespace VynSdk {

void Phase0DataIntf::responseIs(Plexa::IntfId const& intf, Phase0DataResponse response) {
    response_.findOrInsert(intf).value = std::move(response);
}

void Phase0DataIntf::publishResponse(Plexa::IntfId const& intf) const {
    publisher_.publish(responseAttribute, Vanta::ValueRef::to(intf));
}

Kel::TypeInfo const& Phase0DataIntf::typeInfo() const noexcept {
    static constexpr Kel::AttributeInfo attributes[] = {
        Kel::attribute<&Phase0DataIntf::response>(130, "response", "VynSdk::Phase0DataResponse",
                                                  Kel::AttributeKind::collection),
    };
    static constexpr std::string_view operations[] = {"configIs", "configDel"};
    static constexpr Kel::TypeInfo info{"Phase0DataIntf", attributes, operations};
    return info;
}

}  // namespace VynSdk
