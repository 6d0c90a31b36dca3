#include "Vanta/Tap.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using Vanta::Change;
using Vanta::Publisher;
using Vanta::Tap;
using Vanta::ValueRef;

using Log = std::vector<std::string>;

struct Named {
    Named(Log& its, std::string called) : log(its), name(std::move(called)) {}

    void heard(Change const& change) { log.push_back(name + std::to_string(change.attribute)); }

    Log& log;
    std::string const name;
    Tap const tap = Tap::to<&Named::heard>(this);
};

class TapTest : public testing::Test {
  protected:
    Log log;
    Publisher publisher{nullptr};
};

TEST_F(TapTest, TheNewestIsToldFirst) {
    Named const a(log, "a");
    Named const b(log, "b");
    publisher.publish(7);
    EXPECT_EQ(log, (Log{"b7", "a7"}));
}

TEST_F(TapTest, TheOneBeforeIsToldAsEverWhenTheNewestHasGone) {
    Named const a(log, "a");
    { Named const b(log, "b"); }
    publisher.publish(7);
    EXPECT_EQ(log, (Log{"a7"}));
}

TEST_F(TapTest, AnOlderOneMayGoFirst) {
    auto a = std::make_unique<Named>(log, "a");
    auto b = std::make_unique<Named>(log, "b");
    Named const c(log, "c");
    b.reset();
    publisher.publish(7);
    a.reset();
    publisher.publish(8);
    EXPECT_EQ(log, (Log{"c7", "a7", "c8"}));
}

TEST_F(TapTest, NobodyIsToldWhenAllHaveGone) {
    { Named const a(log, "a"); }
    publisher.publish(7);
    EXPECT_EQ(log, Log());
}

TEST_F(TapTest, IsToldOfPublisherKeyAndOldValue) {
    struct Heard {
        Publisher const* publisher = nullptr;
        std::string key;
        int old = 0;
    } heard;
    Tap const tap(
        [](void* context, Change const& change) {
            *static_cast<Heard*>(context) = {&change.publisher, change.key.get<std::string>(),
                                             change.oldValue.get<int>()};
        },
        &heard);
    publisher.publish(1, ValueRef::to(std::string("key")), ValueRef::to(5));
    EXPECT_EQ(heard.publisher, &publisher);
    EXPECT_EQ(heard.key, "key");
    EXPECT_EQ(heard.old, 5);
}

}  // namespace
