// A directory of the state database: names and their entities.
//
// Every change of the entry collection (added, replaced, removed) is one publication of attribute
// 266 with the name as key, made after the change. Iteration goes in the order in which the names
// were added; replacing an entity keeps the position of its name. Thread: one only.
#pragma once

#include "Kel/Collection.h"
#include "Kel/Object.h"
#include "Vanta/Publisher.h"
#include "Vanta/String.h"

namespace Kel {

class VYN_EXPORT Dir final : public Object {
  public:
    static constexpr Vanta::AttributeNumber entryAttribute = 266;
    using Entries = Collection<Vanta::String, Vanta::Ptr<Vanta::Node>>;

    // A new, empty directory.
    static Vanta::Ptr<Dir> DirIs();

    // Puts an entity, which may be null, under a name. Publishes, also when nothing differs.
    void entryIs(Vanta::String const& name, Vanta::Ptr<Vanta::Node> entity);

    // Removes a name and returns its entity; null, and no publication, if the name is absent.
    Vanta::Ptr<Vanta::Node> entryDel(Vanta::String const& name);

    bool entryHas(Vanta::String const& name) const { return entries_.has(name); }
    Entries const& entry() const noexcept { return entries_; }

    // The entity of a name if it is a T; null for an absent name, an absent entity, another type.
    template <class T>
    Vanta::Ptr<T> entity(Vanta::String const& name) const {
        auto const* found = entries_.find(name);
        return found != nullptr ? Vanta::dynamicCast<T>(found->value) : nullptr;
    }

    Vanta::Publisher const& publisher() const noexcept { return publisher_; }
    TypeInfo const& typeInfo() const noexcept override;

  private:
    Dir() noexcept;
    ~Dir() override;
    friend struct Vanta::NodeFactory;

    Entries entries_;
    Vanta::Publisher publisher_{this};
};

}  // namespace Kel
