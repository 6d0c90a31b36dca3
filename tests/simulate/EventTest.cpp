#include "simulate/Event.h"

#include <gtest/gtest.h>

namespace Simulate {
namespace {

TEST(Event, ClientsAreNamedByLetters) {
    EXPECT_EQ(clientName(0), "A");
    EXPECT_EQ(clientName(4), "E");
}

TEST(Event, ALineNamesWhatItIsAbout) {
    Event const event{.kind = Kind::request,
                      .client = 1,
                      .req = 3,
                      .intf = *Plexa::IntfId::fromName("Ethernet2"),
                      .a = 2048,
                      .flag = true,
                      .raw = Bytes(64)};
    EXPECT_EQ(text(event),
              "request client B req 3 Ethernet2 a=2048 b=0 c=0 value=0 true packet of 64");
}

TEST(Event, TheLastKindHasAName) {
    EXPECT_EQ(text({.kind = Kind::faultsEnd}).substr(0, 9), "faultsEnd");
}

}  // namespace
}  // namespace Simulate
