#include "Vanta/Publisher.h"

#include <utility>

#include "Vanta/Tap.h"

namespace Vanta {

// A delivery under way, on the stack of publish(). Unsubscribing moves `next` past the subscriber
// that unsubscribes; a publisher that is destroyed unsubscribes all, so `next` is then null.
struct Publisher::Delivery {
    Subscriber* next;
    Delivery* outer;
    bool publisherGone = false;
};

Publisher::~Publisher() {
    for (Delivery* delivery = deliveries_; delivery != nullptr; delivery = delivery->outer) {
        delivery->publisherGone = true;
    }
    while (first_ != nullptr) {
        first_->unsubscribe();
    }
}

void Publisher::publish(AttributeNumber attribute, ValueRef key, ValueRef oldValue) const {
    Change const change{*this, attribute, key, oldValue};
    if (Tap::chain_.first() != nullptr) [[unlikely]] {
        Tap::tell(change);
    }
    if (first_ == nullptr) {
        return;
    }
    Delivery delivery{first_, deliveries_};
    deliveries_ = &delivery;
    std::uint64_t const newest = subscriptions_;
    try {
        while (delivery.next != nullptr && delivery.next->number_ <= newest) {
            Subscriber& subscriber = *delivery.next;
            delivery.next = subscriber.next_;
            subscriber.dispatch_(subscriber.context_, subscriber, change);
        }
    } catch (...) {
        endProcessWithCurrentException();
    }
    if (!delivery.publisherGone) {
        deliveries_ = delivery.outer;
    }
}

void Subscriber::subscribe(Publisher const& publisher, Dispatch dispatch, void* context) noexcept {
    unsubscribe();
    publisher_ = &publisher;
    dispatch_ = dispatch;
    context_ = context;
    number_ = ++publisher.subscriptions_;
    previous_ = std::exchange(publisher.last_, this);
    (previous_ != nullptr ? previous_->next_ : publisher.first_) = this;
}

void Subscriber::unsubscribe() noexcept {
    if (publisher_ == nullptr) {
        return;
    }
    for (auto* delivery = publisher_->deliveries_; delivery != nullptr;
         delivery = delivery->outer) {
        if (delivery->next == this) {
            delivery->next = next_;
        }
    }
    (previous_ != nullptr ? previous_->next_ : publisher_->first_) = next_;
    (next_ != nullptr ? next_->previous_ : publisher_->last_) = previous_;
    publisher_ = nullptr;
    previous_ = next_ = nullptr;
}

}  // namespace Vanta
