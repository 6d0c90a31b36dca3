#include "PacketTracer/Request.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <string_view>

#include "PacketTracer/Publications.h"

namespace {

using PacketTracer::IpAddress;
using PacketTracer::MacAddress;
using PacketTracer::PacketFields;
using PacketTracer::Request;
using Plexa::IntfId;

Vanta::Ptr<Request> newRequest() {
    return Request::RequestIs({"client", 1});
}

PacketFields fieldsTo(char const* address) {
    PacketFields fields;
    fields.ipDst = IpAddress::fromText(address);
    return fields;
}

TEST(Request, IsNotValidAndHasNoPacketAtFirst) {
    auto const request = newRequest();
    EXPECT_FALSE(request->valid());
    EXPECT_TRUE(request->frame().empty());
    EXPECT_EQ(request->fields(), nullptr);
    EXPECT_EQ(request->etherType(), 0);
    EXPECT_FALSE(request->mpls());
    EXPECT_FALSE(request->gre());
    EXPECT_TRUE(request->intf().empty());
}

TEST(Request, KeepsItsId) {
    EXPECT_EQ(newRequest()->id(), PacketTracer::RequestId("client", 1));
}

// One attribute: its setter, called with the same value each time, and its number.
struct Setter {
    char const* name;
    std::function<void(Request&)> set;
    unsigned attribute;
};

std::ostream& operator<<(std::ostream& out, Setter const& setter) {
    return out << setter.name;
}

struct RequestSetter : testing::TestWithParam<Setter> {};

struct Count {
    void add(Vanta::Publisher const&, Vanta::Subscriber&, Vanta::AttributeNumber number,
             Vanta::ValueRef, Vanta::ValueRef) {
        ++publications;
        attribute = number;
    }
    int publications = 0;
    unsigned attribute = 0;
};

TEST_P(RequestSetter, PublishesAChangeOnceAndTheSameValueNever) {
    auto const request = newRequest();
    Count count;
    Vanta::Subscriber subscriber;
    subscriber.subscribe<&Count::add>(request->publisher(), &count);
    GetParam().set(*request);
    EXPECT_EQ(count.publications, 1);
    EXPECT_EQ(count.attribute, GetParam().attribute);
    GetParam().set(*request);
    EXPECT_EQ(count.publications, 1);
}

INSTANTIATE_TEST_SUITE_P(
    Attributes, RequestSetter,
    testing::Values(Setter{"valid", [](Request& r) { r.validIs(true); }, 131},
                    Setter{"etherType", [](Request& r) { r.etherTypeIs(0x800); }, 132},
                    Setter{"mpls", [](Request& r) { r.mplsIs(true); }, 133},
                    Setter{"gre", [](Request& r) { r.greIs(true); }, 134},
                    Setter{"intf", [](Request& r) { r.intfIs(*IntfId::fromName("Lag1")); }, 135},
                    Setter{"frame",
                           [](Request& r) {
                               r.frameIs({1, 2, 3});
                           },
                           136},
                    Setter{"fields", [](Request& r) { r.fieldsIs(fieldsTo("10.0.0.1")); }, 137}),
    [](auto const& setter) { return std::string(setter.param.name); });

TEST(Request, StoresBeforeItPublishesAndTellsTheOldValue) {
    auto const request = newRequest();
    request->etherTypeIs(0x800);
    Publications<int, std::uint16_t> publications(request->publisher());
    request->etherTypeIs(0x86dd);
    ASSERT_EQ(publications.seen.size(), 1U);
    EXPECT_EQ(publications.seen[0].old, 0x800);
    EXPECT_EQ(request->etherType(), 0x86dd);
}

TEST(Request, SharesTheBytesOfAFrame) {
    Vanta::Bytes const frame{1, 2, 3};
    auto const request = newRequest();
    request->frameIs(frame);
    EXPECT_EQ(request->frame().data(), frame.data());
}

TEST(Request, KeepsFieldsAsTheyWereGiven) {
    auto const request = newRequest();
    PacketFields fields = fieldsTo("10.0.0.1");
    fields.tags.push_back({.vlan = 10});
    request->fieldsIs(fields);
    ASSERT_NE(request->fields(), nullptr);
    EXPECT_EQ(*request->fields(), fields);
}

TEST(Request, TellsTheFieldsThatItHadBefore) {
    auto const request = newRequest();
    Publications<int, PacketFields> publications(request->publisher());
    request->fieldsIs(fieldsTo("10.0.0.1"));
    request->fieldsIs(fieldsTo("10.0.0.2"));
    ASSERT_EQ(publications.seen.size(), 2U);
    EXPECT_EQ(publications.seen[0].old, std::nullopt);
    EXPECT_EQ(publications.seen[1].old, fieldsTo("10.0.0.1"));
}

TEST(Request, LosesItsFieldsWithOnePublication) {
    auto const request = newRequest();
    request->fieldsIs(fieldsTo("10.0.0.1"));
    Publications<int, PacketFields> publications(request->publisher());
    request->fieldsIs(std::nullopt);
    request->fieldsIs(std::nullopt);
    EXPECT_EQ(request->fields(), nullptr);
    ASSERT_EQ(publications.seen.size(), 1U);
    EXPECT_EQ(publications.seen[0].old, fieldsTo("10.0.0.1"));
}

TEST(Request, TakesEmptyFieldsForFields) {
    auto const request = newRequest();
    request->fieldsIs(PacketFields());
    EXPECT_NE(request->fields(), nullptr);
}

TEST(Request, ListsItsAttributesFrom130InOrder) {
    auto const request = newRequest();
    unsigned number = 130;
    std::string names;
    for (auto const& attribute : request->typeInfo().attributes) {
        EXPECT_EQ(attribute.number, number++);
        names += std::string(attribute.name) + " ";
    }
    EXPECT_EQ(names, "id valid etherType mpls gre intf frame fields ");
}

}  // namespace
