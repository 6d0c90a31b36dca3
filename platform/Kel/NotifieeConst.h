// A notifiee: a nested state machine that watches one object which it does not change.
//
//   state of the subscription   when
//   connected                   registered, notifications active, and there is a notifier
//   not connected               otherwise
//
// The notifiee holds a reference to its notifier; the notifiee itself is held by its owner. Thread:
// one only.
#pragma once

#include "Kel/Object.h"
#include "Vanta/Publisher.h"

namespace Kel {

template <class T>
class NotifieeConst : public Object {
  public:
    Vanta::Ptr<T const> const& notifier() const noexcept { return notifier_; }
    bool registered() const noexcept { return registered_; }

    // Switches the reactions on or off.
    void hasNotificationActiveIs(bool on) noexcept {
        notificationActiveFlagIs(on);
        connect();
    }
    void registeredIs(bool on) noexcept {
        registered_ = on;
        connect();
    }

    // A change of the notifier's attribute `attribute`.
    virtual void onAttribute(Vanta::AttributeNumber attribute, Vanta::ValueRef oldValue) = 0;

    // Marks the notifiee as being torn down (true): it then reacts to nothing. If there is a
    // notifier, setting the mark switches the notifications off and clearing it switches them on,
    // whatever they were before and whatever the owner's are.
    virtual void kelDoZombieReactors(bool on) {
        if (isZombie() == on) {
            return;
        }
        if (notifier_) {
            hasNotificationActiveIs(!on);
        }
        zombieFlagIs(on);
    }

    TypeInfo const& typeInfo() const noexcept override {
        static constexpr AttributeInfo attributes[] = {
            attribute<&NotifieeConst::notifier>(0, "notifier", "Vanta::Node",
                                                AttributeKind::pointer),
            attribute<&NotifieeConst::registered>(0, "registered", "bool"),
        };
        static constexpr TypeInfo info{"NotifieeConst", attributes, {}};
        return info;
    }

  protected:
    NotifieeConst() = default;
    ~NotifieeConst() override = default;

    // Watches another object, without reacting.
    void plainNotifierIs(Vanta::Ptr<T const> notifier) noexcept {
        subscriber_.unsubscribe();
        notifier_ = std::move(notifier);
        connect();
    }

  private:
    void connect() noexcept {
        bool const wanted = registered_ && hasNotificationActive() && notifier_;
        if (wanted == subscriber_.subscribed()) {
            return;
        }
        if (wanted) {
            subscriber_.subscribe<&NotifieeConst::dispatch>(notifier_->publisher(), this);
        } else {
            subscriber_.unsubscribe();
        }
    }
    void dispatch(Vanta::Change const& change) { onAttribute(change.attribute, change.oldValue); }

    // The flag comes first, in the padding behind the base's flags. The subscriber is declared
    // last, so it is destroyed before the notifier to whose publisher it is subscribed.
    bool registered_ = false;
    Vanta::Ptr<T const> notifier_;
    Vanta::Subscriber subscriber_;
};

}  // namespace Kel
