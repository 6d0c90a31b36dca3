// Releasing a client from inside a notification.
#include "VynPacketTracer/ClientFixture.h"

namespace VynPacketTracer {
namespace {

class ClientReleaseTest : public RunningClientTest {
  protected:
    // Releases the client at the first publication.
    OnPublication releaseAt(Vanta::Publisher const& publisher) {
        return OnPublication(publisher, [this](auto, auto) { client = nullptr; });
    }
};

TEST_F(ClientReleaseTest, MayHappenWhileARequestIsAccepted) {
    auto const observer = releaseAt(pktGenConfig->publisher());
    EXPECT_EQ(after([&] { request(1); }), accepted(1));
    EXPECT_EQ(clientConfig->refCount(), 1u);
}

TEST_F(ClientReleaseTest, MayHappenWhileARequestIsRefused) {
    auto const observer = releaseAt(clientStatus->publisher());
    request(1, "Ethernet9");
    EXPECT_EQ(happened("result"),
              (Lines{"result add noc/1", "result state noc/1 3", "result valid noc/1 true"}));
    EXPECT_EQ(clientStatus->refCount(), 1u);
}

TEST_F(ClientReleaseTest, MayHappenWhileARequestIsWithdrawn) {
    request(1);
    auto const observer = releaseAt(pktGenConfig->publisher());
    withdraw(1);
    EXPECT_EQ(clientConfig->refCount(), 1u);
}

TEST_F(ClientReleaseTest, MayHappenInTheReactionToValid) {
    auto const made = request(1, "Ethernet1", false);
    auto const observer = releaseAt(pktGenConfig->publisher());
    EXPECT_EQ(after([&] { made->validIs(true); }), accepted(1));
    EXPECT_EQ(clientConfig->refCount(), 1u);
}

TEST_F(ClientReleaseTest, MayHappenWhileAReactorFindsItsRequestWithdrawn) {
    auto const loose = makeRequest("noc", 1, "Ethernet1");
    client->requestIs(loose);
    job(1);
    clientStatus->resultIs(id("noc", 1));
    auto const observer = releaseAt(pktGenConfig->publisher());
    loose->validIs(false);
    EXPECT_FALSE(result(1));
    EXPECT_EQ(clientConfig->refCount(), 1u);
}

TEST_F(ClientReleaseTest, MayHappenWhileARequestIsReplaced) {
    request(1);
    pktGenConfig->cfgDel(id("noc", 1));
    auto const observer = releaseAt(pktGenConfig->publisher());
    request(1);
    EXPECT_EQ(clientConfig->refCount(), 1u);
}

TEST_F(ClientReleaseTest, MayHappenInRequestIs) {
    request(1);
    pktGenConfig->cfgDel(id("noc", 1));
    auto const observer = releaseAt(pktGenConfig->publisher());
    PacketTracerClientSm& held = *client;
    EXPECT_EQ(after([&] { held.requestIs(makeRequest("noc", 1, "Ethernet1")); }), accepted(1));
    EXPECT_EQ(clientConfig->refCount(), 1u);
}

TEST_F(ClientReleaseTest, ARequestWithdrawnWhileItIsAcceptedLeavesNothing) {
    OnPublication const observer(pktGenConfig->publisher(), [&](auto, auto) { withdraw(1); });
    request(1);
    EXPECT_FALSE(pktGenConfig->cfgHas(id("noc", 1)));
    EXPECT_FALSE(client->requestHas(id("noc", 1)));
}

}  // namespace
}  // namespace VynPacketTracer
