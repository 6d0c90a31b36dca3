#include "simulate/Event.h"

#include <gtest/gtest.h>

#include <set>

namespace Simulate {
namespace {

TEST(Event, ClientsAreNamedByLetters) {
    EXPECT_EQ(clientName(0), "A");
    EXPECT_EQ(clientName(4), "E");
}

TEST(Event, AnEventOfAScenarioReadsAsThere) {
    EXPECT_EQ(
        text(Do::Request{
            .id = requestId(1, 3), .intf = *Plexa::IntfId::fromName("Ethernet2"), .raw = Bytes(2)}),
        R"({"do":"request","client":"B","req":3,"intf":"Ethernet2","etherType":2048,)"
        R"("mpls":false,"gre":false,"valid":true,"raw":"0000"})");
}

TEST(Event, AFaultReadsAlike) {
    EXPECT_EQ(text(CallFails{SdkSeam::SdkFunction::genOnePkt, {2, 40}, -2}),
              R"({"do":"callFails","call":"genOnePkt","nth":2,"times":40,"rc":-2})");
    EXPECT_EQ(text(DigestsSuffer{SoftChip::DigestFate::held, {1, 3}, 2}),
              R"({"do":"digestsSuffer","fate":"held","nth":1,"times":3,"behind":2})");
    EXPECT_EQ(text(Turns{6, true}), R"({"do":"turns","times":6,"chipWorks":true})");
}

template <std::size_t... Index>
std::set<std::string> namesOf(std::index_sequence<Index...>) {
    return {text(Event(std::in_place_index<Index>)).substr(0, 16)...};
}

TEST(Event, EveryKindHasAName) {
    constexpr auto count = std::variant_size_v<Event>;
    auto const names = namesOf(std::make_index_sequence<count>());
    EXPECT_EQ(names.size(), count);
    for (auto const& name : names) {
        EXPECT_FALSE(name.starts_with(R"({"do":"")")) << name;
    }
}

}  // namespace
}  // namespace Simulate
