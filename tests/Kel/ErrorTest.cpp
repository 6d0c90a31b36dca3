#include "Kel/Error.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>

#include "Vanta/Node.h"

namespace {

constexpr Kel::AttributeInfo attributes[] = {
    {131, "pkt", Kel::AttributeKind::value, "Vanta::Bytes", nullptr},
    {133, "ingIntf", Kel::AttributeKind::value, "Plexa::IntfId", nullptr},
};
constexpr Kel::TypeInfo job{"PktGenCfgData", attributes, {}};

struct Thing final : Vanta::Node {};

TEST(Error, OfReinstantiationNamesTypeAttributeEntryAndBothValues) {
    Kel::ReinstantiationError const error(job, "pkt", "request 1 of client noc", "00ff", "01ff");
    EXPECT_EQ(error.typeName(), "PktGenCfgData");
    EXPECT_EQ(error.attribute(), "pkt");
    EXPECT_EQ(error.oldValue(), "00ff");
    EXPECT_EQ(error.newValue(), "01ff");
    EXPECT_EQ(error.attributeNumber(), 131U);
    EXPECT_EQ(error.entry(), "request 1 of client noc");
    EXPECT_EQ(error.oldObject(), nullptr);
    EXPECT_EQ(error.newObject(), nullptr);
    EXPECT_STREQ(error.what(),
                 "PktGenCfgData::pkt (attribute 131) of request 1 of client noc cannot change from "
                 "00ff to 01ff");
}

TEST(Error, OfAnotherObjectHoldsBothAndTellsNoAddress) {
    auto stored = Vanta::makeNode<Thing>();
    auto given = Vanta::makeNode<Thing>();
    Kel::ReinstantiationError const error(job, "pkt", "client noc", stored, given);
    EXPECT_EQ(error.oldObject(), stored);
    EXPECT_EQ(error.newObject(), given);
    EXPECT_EQ(error.oldValue() + error.newValue(), "");
    EXPECT_STREQ(error.what(),
                 "PktGenCfgData::pkt (attribute 131) of client noc differs from the object that it "
                 "was made with");
}

TEST(Error, OfAnotherObjectKeepsBothAlive) {
    auto stored = Vanta::makeNode<Thing>();
    auto given = Vanta::makeNode<Thing>();
    Kel::ReinstantiationError const error(job, "pkt", "client noc", stored, given);
    EXPECT_EQ(stored->refCount(), 2U);
    EXPECT_EQ(given->refCount(), 2U);
}

TEST(Error, OfAnotherObjectSaysWhichOneIsNull) {
    auto const thing = Vanta::makeNode<Thing>();
    EXPECT_STREQ(Kel::ReinstantiationError(job, "pkt", "client noc", thing,
                                           Kel::ReinstantiationError::Object())
                     .what(),
                 "PktGenCfgData::pkt (attribute 131) of client noc is null, which differs from the "
                 "object that it was made with");
    EXPECT_STREQ(Kel::ReinstantiationError(job, "pkt", "client noc",
                                           Kel::ReinstantiationError::Object(), thing)
                     .what(),
                 "PktGenCfgData::pkt (attribute 131) of client noc differs from null, which it was "
                 "made with");
}

TEST(Error, OfAReinstantiatedValueIsCaughtAsReinstantiation) {
    try {
        throw Kel::ReinstantiatingValueError(job, "ingIntf", "request 1 of client noc", "Ethernet1",
                                             "Ethernet2");
    } catch (Kel::ReinstantiationError const& error) {
        EXPECT_EQ(error.oldValue(), "Ethernet1");
        EXPECT_EQ(error.newValue(), "Ethernet2");
    }
}

TEST(Error, OfReinstantiationHasNumber0ForAnAttributeOutsideTheTable) {
    Kel::ReinstantiationError const error(job, "colour", "a car", "red", "blue");
    EXPECT_EQ(error.attributeNumber(), 0U);
    EXPECT_STREQ(error.what(),
                 "PktGenCfgData::colour (attribute 0) of a car cannot change from red to blue");
}

TEST(Error, OfANullArgumentNamesTypeAndAttribute) {
    Kel::NullArgumentError const error("PacketTracer::ClientConfig", "request");
    EXPECT_EQ(error.typeName(), "PacketTracer::ClientConfig");
    EXPECT_EQ(error.attribute(), "request");
    EXPECT_STREQ(error.what(), "PacketTracer::ClientConfig::request given null");
}

TEST(Error, OfARangeCarriesTheTextOfItsType) {
    Kel::RangeError const error("Bridging::VlanId", "value", "1 to 4094, please");
    EXPECT_EQ(error.typeName(), "Bridging::VlanId");
    EXPECT_EQ(error.attribute(), "value");
    EXPECT_STREQ(error.what(), "1 to 4094, please");
}

TEST(Error, IsAStandardExceptionWhateverItsKind) {
    static_assert(std::is_base_of_v<std::exception, Kel::Error>);
    static_assert(std::is_base_of_v<Kel::Error, Kel::ReinstantiatingValueError>);
    static_assert(std::is_base_of_v<Kel::Error, Kel::NullArgumentError>);
    EXPECT_THROW(throw Kel::RangeError("T", "a", ""), std::exception);
}

TEST(Error, KeepsItsTextWhenCopied) {
    std::string text = "a text that is too long for a string's own few bytes";
    Kel::RangeError const copy = Kel::RangeError("T", "a", text);
    text.assign(text.size(), '-');
    EXPECT_STREQ(copy.what(), "a text that is too long for a string's own few bytes");
}

}  // namespace
