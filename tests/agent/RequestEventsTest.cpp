#include "agent/RequestEvents.h"

#include <gtest/gtest.h>

#include "scenario/Writer.h"

namespace Agent {
namespace {

using PacketTracer::Request;
using Lines = std::vector<std::string>;

Vanta::Ptr<Request> someRequest() {
    auto const request = Request::RequestIs({"A", 7});
    request->intfIs(Plexa::IntfId::fromName("Ethernet1").value());
    request->etherTypeIs(2054);
    request->frameIs({0xab, 0x01});
    return request;
}

// The lines of what tells of an attribute.
Lines set(Request const& request, Request::Attribute attribute) {
    Lines lines;
    for (auto const& event : requestSetEvents(request, attribute)) {
        lines.push_back(Scenario::line(event));
    }
    return lines;
}

TEST(RequestEvents, TellAWholeRequest) {
    EXPECT_EQ(Scenario::line(requestEvent(*someRequest())),
              R"({"do":"request","client":"A","req":7,"intf":"Ethernet1","etherType":2054,)"
              R"("mpls":false,"gre":false,"valid":false,"raw":"ab01"})");
}

TEST(RequestEvents, TellOneAttributeOfARequest) {
    auto const request = someRequest();
    std::string const begin = R"({"do":"requestSet","client":"A","req":7,"attr":)";
    auto const expectSet = [&](Request::Attribute attribute, std::string const& rest) {
        EXPECT_EQ(set(*request, attribute), Lines{begin + rest});
    };
    expectSet(Request::validAttribute, R"("valid","value":false})");
    expectSet(Request::etherTypeAttribute, R"("etherType","value":2054})");
    expectSet(Request::mplsAttribute, R"("mpls","value":false})");
    expectSet(Request::greAttribute, R"("gre","value":false})");
    expectSet(Request::intfAttribute, R"("intf","value":"Ethernet1"})");
    expectSet(Request::frameAttribute, R"("raw","value":"ab01"})");
    EXPECT_EQ(set(*request, Request::idAttribute), Lines{});
}

TEST(RequestEvents, TellWhatTheFieldsOfARequestBuild) {
    auto const request = someRequest();
    request->frameIs({});
    request->etherTypeIs(0x88b5);
    PacketTracer::PacketFields fields;
    fields.ethDst = PacketTracer::MacAddress{0x020000000002};
    fields.ethSrc = PacketTracer::MacAddress{0x020000000001};
    request->fieldsIs(fields);
    auto const lines = set(*request, Request::etherTypeAttribute);
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_NE(lines[1].find(R"("attr":"raw","value":"02000000000202000000000188b5)"),
              std::string::npos);
    EXPECT_NE(Scenario::line(requestEvent(*request)).find(R"("raw":"02000000000202000000000188b5)"),
              std::string::npos);
}

}  // namespace
}  // namespace Agent
