#include "Kel/Reflection.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

#include "Kel/Object.h"

namespace {

using Kel::AttributeKind;

// Writes what it is told as one line.
struct LineSink final : Kel::AttributeSink {
    void number(std::int64_t value) override { add("i" + std::to_string(value)); }
    void number(std::uint64_t value) override { add("u" + std::to_string(value)); }
    void boolean(bool value) override { add(value ? "true" : "false"); }
    void text(std::string_view value) override { add("'" + std::string(value) + "'"); }
    void object(Vanta::Node const* value) override { add(value != nullptr ? "object" : "null"); }
    void listStart() override { add("["); }
    void listEnd() override { add("]"); }
    void add(std::string const& word) { line += line.empty() ? word : " " + word; }
    std::string line;
};

template <class T>
std::string reflected(T const& value) {
    using Kel::reflectValue;
    LineSink sink;
    reflectValue(sink, value);
    return sink.line;
}

// A value type of another namespace, which brings a reflectValue() of its own.
namespace Colours {
struct Colour {
    std::uint8_t red;
    std::uint8_t green;
};
void reflectValue(Kel::AttributeSink& sink, Colour colour) {
    sink.listStart();
    sink.number(std::uint64_t{colour.red});
    sink.number(std::uint64_t{colour.green});
    sink.listEnd();
}
}  // namespace Colours

struct Empty {};

class Car final : public Kel::Object {
  public:
    using Wheels = Kel::Collection<std::uint32_t, Colours::Colour>;

    static Vanta::Ptr<Car> CarIs() { return Vanta::makeNode<Car>(); }
    Vanta::String const& name() const noexcept { return name_; }
    bool electric() const { return true; }
    std::uint16_t doors() const { return 5; }
    Colours::Colour colour() const { return {1, 2}; }
    Vanta::Ptr<Car> const& towed() const { return towed_; }
    Wheels const& wheels() const { return wheels_; }

    Kel::TypeInfo const& typeInfo() const noexcept override {
        static constexpr Kel::AttributeInfo attributes[] = {
            Kel::attribute<&Car::name>(130, "name", "Vanta::String"),
            Kel::attribute<&Car::electric>(131, "electric", "bool"),
            Kel::attribute<&Car::doors>(132, "doors", "U16"),
            Kel::attribute<&Car::colour>(0, "colour", "Colours::Colour"),
            Kel::attribute<&Car::towed>(133, "towed", "Car", AttributeKind::pointer),
            Kel::attribute<&Car::wheels>(134, "wheels", "Colours::Colour",
                                         AttributeKind::collection),
        };
        static constexpr std::string_view operations[] = {"drive"};
        static constexpr Kel::TypeInfo info{"Car", attributes, operations};
        return info;
    }

    Vanta::String name_ = "van";
    Vanta::Ptr<Car> towed_;
    Wheels wheels_;
};

std::string reflectedAttribute(Kel::Object const& object, unsigned number) {
    LineSink sink;
    for (auto const& attribute : object.typeInfo().attributes) {
        if (attribute.number == number) {
            attribute.read(object, sink);
        }
    }
    return sink.line;
}

// Attributes' numbers are in the traces and recordings of every process that was ever built.
TEST(Reflection, NumbersAttributesFrom130On) {
    EXPECT_EQ(Kel::firstAttribute, 130U);
}

TEST(Reflection, TellsSignedFromUnsignedNumbersInAllTheirWidths) {
    EXPECT_EQ(reflected(std::int8_t{-1}), "i-1");
    EXPECT_EQ(reflected(std::numeric_limits<std::int64_t>::min()), "i-9223372036854775808");
    EXPECT_EQ(reflected(std::uint8_t{200}), "u200");
    EXPECT_EQ(reflected(std::numeric_limits<std::uint64_t>::max()), "u18446744073709551615");
}

TEST(Reflection, ReadsTruthValuesAsSuch) {
    EXPECT_EQ(reflected(true), "true");
    EXPECT_EQ(reflected(false), "false");
}

TEST(Reflection, ReadsText) {
    EXPECT_EQ(reflected(std::string_view("text")), "'text'");
}

TEST(Reflection, ReadsNamesAsTextAndBytesAsDigits) {
    EXPECT_EQ(reflected(Vanta::String("noc")), "'noc'");
    EXPECT_EQ(reflected(Vanta::Bytes{0x0a, 0xff}), "'0aff'");
    EXPECT_EQ(reflected(*Plexa::IntfId::fromName("Ethernet1/2")), "'Ethernet1/2'");
    EXPECT_EQ(reflected(Plexa::IntfId()), "''");
}

TEST(Reflection, ReadsAPointerAsItsObjectOrNull) {
    EXPECT_EQ(reflected(Vanta::Ptr<Car>()), "null");
    EXPECT_EQ(reflected(Car::CarIs()), "object");
}

TEST(Reflection, ReadsACollectionAsPairsInItsOrder) {
    Kel::Collection<int, Vanta::String> collection;
    collection.insert(2, "two");
    collection.insert(1, "one");
    EXPECT_EQ(reflected(collection), "[ [ i2 'two' ] [ i1 'one' ] ]");
}

TEST(Reflection, ReadsASetAsItsKeys) {
    Kel::Collection<int, Empty> set;
    EXPECT_EQ(reflected(set), "[ ]");
    set.insert(2);
    set.insert(1);
    EXPECT_EQ(reflected(set), "[ i2 i1 ]");
}

TEST(Reflection, ReadsEveryRowOfATypesTableThroughItsAccessor) {
    auto const car = Car::CarIs();
    car->towed_ = Car::CarIs();
    car->wheels_.insert(7U, Colours::Colour{3, 4});
    EXPECT_EQ(reflectedAttribute(*car, 130), "'van'");
    EXPECT_EQ(reflectedAttribute(*car, 131), "true");
    EXPECT_EQ(reflectedAttribute(*car, 132), "u5");
    EXPECT_EQ(reflectedAttribute(*car, 0), "[ u1 u2 ]");
    EXPECT_EQ(reflectedAttribute(*car, 133), "object");
    EXPECT_EQ(reflectedAttribute(*car, 134), "[ [ u7 [ u3 u4 ] ] ]");
}

TEST(Reflection, TellsTheKindAndTypeOfEveryAttribute) {
    auto const car = Car::CarIs();
    auto const& attributes = car->typeInfo().attributes;
    EXPECT_EQ(attributes[0].kind, AttributeKind::value);
    EXPECT_EQ(attributes[4].kind, AttributeKind::pointer);
    EXPECT_EQ(attributes[5].kind, AttributeKind::collection);
    EXPECT_EQ(attributes[5].type, "Colours::Colour");
}

TEST(Reflection, NamesTheTypeAndItsOperations) {
    auto const car = Car::CarIs();
    EXPECT_EQ(car->typeInfo().name, "Car");
    ASSERT_EQ(car->typeInfo().operations.size(), 1U);
    EXPECT_EQ(car->typeInfo().operations[0], "drive");
}

}  // namespace
