// The base of every type of the framework: a counted node with a reflection table and the two
// flags that a state machine carries.
#pragma once

#include "Kel/Reflection.h"
#include "Vanta/Node.h"
#include "VynExport.h"

namespace Kel {

// Attributes are numbered from here, in the order of declaration.
inline constexpr unsigned firstAttribute = 130;

class VYN_EXPORT Object : public Vanta::Node {
  public:
    // The type's reflection table.
    virtual TypeInfo const& typeInfo() const noexcept = 0;

    // True while the object's observations are connected.
    bool hasNotificationActive() const noexcept { return notificationActive_; }
    // True while the object is being torn down; its dispatchers then ignore notifications.
    bool isZombie() const noexcept { return zombie_; }

  protected:
    Object() noexcept;
    ~Object() override;

    void notificationActiveFlagIs(bool on) noexcept { notificationActive_ = on; }
    void zombieFlagIs(bool on) noexcept { zombie_ = on; }

  private:
    bool notificationActive_ = false;
    bool zombie_ = false;
};

}  // namespace Kel
