#include "Fen/FenCommonSmData.h"

namespace Fen {

Vanta::Ptr<FenCommonSmData> FenCommonSmData::FenCommonSmDataIs() {
    return Vanta::makeNode<FenCommonSmData>();
}

void FenCommonSmData::lagToPortIs(Plexa::IntfId const& lag) {
    lagToPort_.findOrInsert(lag);
}

bool FenCommonSmData::lagToPortDel(Plexa::IntfId const& lag) {
    return lagToPort_.remove(lag).has_value();
}

void FenCommonSmData::portToLagIs(Plexa::IntfId const& member, Plexa::IntfId const& lag) {
    portToLag_.findOrInsert(member).value = lag;
}

bool FenCommonSmData::portToLagDel(Plexa::IntfId const& member) {
    return portToLag_.remove(member).has_value();
}

Kel::TypeInfo const& FenCommonSmData::typeInfo() const noexcept {
    using Kel::AttributeKind;
    static constexpr Kel::AttributeInfo attributes[] = {
        Kel::attribute<&FenCommonSmData::lagToPort>(130, "lagToPort", "Fen::FenLagPortList",
                                                    AttributeKind::collection),
        Kel::attribute<&FenCommonSmData::portToLag>(131, "portToLag", "Plexa::IntfId",
                                                    AttributeKind::collection),
    };
    static constexpr Kel::TypeInfo info{"FenCommonSmData", attributes, {}};
    return info;
}

}  // namespace Fen
