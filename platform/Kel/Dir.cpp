#include "Kel/Dir.h"

namespace Kel {

Dir::Dir() noexcept = default;
Dir::~Dir() = default;

Vanta::Ptr<Dir> Dir::DirIs() {
    return Vanta::makeNode<Dir>();
}

void Dir::entryIs(Vanta::String const& name, Vanta::Ptr<Vanta::Node> entity) {
    // The entity that is replaced is released after the publication, so that a subscriber that
    // still works with it during delivery finds it alive.
    Vanta::String const key = name;  // the caller's reference may be the entry's own key
    Vanta::Ptr<Vanta::Node>& place = entries_.findOrInsert(key).value;
    Vanta::Ptr<Vanta::Node> const old = std::exchange(place, std::move(entity));
    publisher_.publish(entryAttribute, Vanta::ValueRef::to(key), Vanta::ValueRef::to(old));
}

Vanta::Ptr<Vanta::Node> Dir::entryDel(Vanta::String const& name) {
    Vanta::String const key = name;  // the caller's reference may be the entry's own key
    auto removed = entries_.remove(key);
    if (!removed) {
        return nullptr;
    }
    publisher_.publish(entryAttribute, Vanta::ValueRef::to(key), Vanta::ValueRef::to(*removed));
    return std::move(*removed);
}

TypeInfo const& Dir::typeInfo() const noexcept {
    static constexpr AttributeInfo attributes[] = {
        attribute<&Dir::entry>(entryAttribute, "entry", "Vanta::Ptr<Vanta::Node>",
                               AttributeKind::collection),
    };
    static constexpr TypeInfo info{"Dir", attributes, {}};
    return info;
}

}  // namespace Kel
