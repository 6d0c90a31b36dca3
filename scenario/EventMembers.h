// The name of each event, and the members of its line in their order. Reader and writer both go
// through this file, so the lines are described once.
//
// An Io is told of each member by name and value:
//   must                 the member is always there
//   may                  the reader leaves the value as it is if the member is not there
//   mayOmit              the same, and the writer omits the member at one value
//   mustWord, mayWord    one of some texts, for an enumeration whose values count from 0
//   entries              a list of so many objects at most
//   oneOrList            a number, or under another name a list of one or more
// For a number its range follows the value; without one the range is that of its type.
#pragma once

#include <algorithm>
#include <array>
#include <string_view>
#include <type_traits>

#include "VynPortTypes/PortIndex.h"
#include "scenario/Event.h"

namespace Scenario {

// By the event's index in the variant.
inline constexpr std::array<std::string_view, std::variant_size_v<Event>> eventNames{
    "port",         "portDel",
    "portToIntfId", "portToIntfIdDel",
    "lagToPort",    "lagToPortDel",
    "portToLag",    "portToLagDel",
    "vlan",         "vlanDel",
    "cpuPort",      "cpuPortDel",
    "start",        "stop",
    "turn",         "yieldAfter",
    "clientConfig", "clientConfigDel",
    "clientStatus", "clientStatusDel",
    "request",      "requestSet",
    "requestDel",   "result",
    "phase0",       "phase0Del",
    "counter",      "sdkReturn",
    "digest",       "digestField"};

inline constexpr std::uint32_t highestPipe = 3;
inline constexpr std::uint32_t highestPort = VynPortTypes::PortIndex::invalid - 1;
// As many as a learn message can count.
inline constexpr std::size_t mostDigestEntries = 65535;

// ---- Forwarding state

void members(auto& io, Do::Port& e) {
    io.must("intf", e.intf);
    io.must("pipe", e.pipe, 0, highestPipe);
    io.must("port", e.port, 0, highestPort);
}
void members(auto& io, Do::PortDel& e) {
    io.must("intf", e.intf);
}
void members(auto& io, Do::PortToIntfId& e) {
    io.must("port", e.port, 0, highestPort);
    io.must("intf", e.intf);
}
void members(auto& io, Do::PortToIntfIdDel& e) {
    io.must("port", e.port, 0, highestPort);
}
void members(auto& io, Do::LagToPort& e) {
    io.must("lag", e.lag);
}
void members(auto& io, Do::LagToPortDel& e) {
    io.must("lag", e.lag);
}
void members(auto& io, Do::PortToLag& e) {
    io.must("intf", e.intf);
    io.must("lag", e.lag);
}
void members(auto& io, Do::PortToLagDel& e) {
    io.must("intf", e.intf);
}
void members(auto& io, Do::Vlan& e) {
    io.must("id", e.id);
    io.must("intf", e.intf);
    io.may("internal", e.internal);
}
void members(auto& io, Do::VlanDel& e) {
    io.must("id", e.id);
}
void members(auto& io, Do::CpuPort& e) {
    io.must("intf", e.intf);
}
void members(auto& io, Do::CpuPortDel& e) {
    io.must("intf", e.intf);
}

// ---- Life of the tracer

void members(auto& io, Do::Start& e) {
    io.may("pktTracerSupported", e.pktTracerSupported);
    io.may("pktGenSupported", e.pktGenSupported);
    io.may("session", e.session);
    io.may("device", e.device);
}
void members(auto&, Do::Stop&) {}
void members(auto& io, Do::Turn& e) {
    io.mayOmit(Do::Turn().times, "times", e.times, 0, mostTimes);
}
void members(auto& io, Do::YieldAfter& e) {
    io.must("checks", e.checks);
}

// ---- Clients and requests

void members(auto& io, PacketTracer::RequestId& id) {
    Vanta::String client = id.clientName();
    std::uint32_t number = id.number();
    io.must("client", client);
    io.must("req", number);
    id = {client, number};
}
void members(auto& io, Do::ClientConfig& e) {
    io.must("client", e.client);
    io.mayWord("entity", e.entity, std::array<std::string_view, 3>{"config", "none", "other"});
}
void members(auto& io, Do::ClientConfigDel& e) {
    io.must("client", e.client);
}
void members(auto& io, Do::ClientStatus& e) {
    io.must("client", e.client);
    io.mayWord("entity", e.entity, std::array<std::string_view, 3>{"status", "none", "other"});
}
void members(auto& io, Do::ClientStatusDel& e) {
    io.must("client", e.client);
}
void members(auto& io, Do::Request& e) {
    members(io, e.id);
    io.must("intf", e.intf);
    io.may("etherType", e.etherType);
    io.may("mpls", e.mpls);
    io.may("gre", e.gre);
    io.may("valid", e.valid);
    io.may("raw", e.raw);
}
void members(auto& io, Do::RequestSet& e) {
    using Attribute = Do::RequestAttribute;
    auto const value = [&]<class T>(std::type_identity<T>) {
        if (!std::holds_alternative<T>(e.value)) {
            e.value.template emplace<T>();
        }
        io.must("value", std::get<T>(e.value));
    };
    members(io, e.id);
    io.mustWord(
        "attr", e.attribute,
        std::array<std::string_view, 6>{"valid", "etherType", "mpls", "gre", "intf", "raw"});
    switch (e.attribute) {
        case Attribute::valid:
        case Attribute::mpls:
        case Attribute::gre:
            return value(std::type_identity<bool>());
        case Attribute::etherType:
            return value(std::type_identity<std::uint16_t>());
        case Attribute::intf:
            return value(std::type_identity<Plexa::IntfId>());
        case Attribute::raw:
            return value(std::type_identity<Vanta::Bytes>());
    }
}
void members(auto& io, Do::RequestDel& e) {
    members(io, e.id);
}
void members(auto& io, Do::Result& e) {
    members(io, e.id);
}

// ---- The scripted chip

void members(auto& io, Do::Phase0& e) {
    io.must("intf", e.intf);
    io.may("status", e.status);
    io.may("data", e.data);
}
void members(auto& io, Do::Phase0Del& e) {
    io.must("intf", e.intf);
}
void members(auto& io, Do::Counter& e) {
    io.must("pipe", e.pipe, 0, highestPipe);
    io.oneOrList("value", "values", e.values);
}
void members(auto& io, Do::SdkReturn& e) {
    using namespace SdkSeam;
    static auto const names = [] {
        std::array<std::string_view, allSdkFunctions.size()> all;
        std::ranges::transform(allSdkFunctions, all.begin(), sdkFunctionName);
        return all;
    }();
    io.mustWord("call", e.call, names);
    io.must("rc", e.rc);
    io.may("times", e.times, 0, mostTimes);
    io.may("after", e.after);
}
void members(auto& io, SdkSeam::TraceDigest& e) {
    io.may("pktId", e.pktId);
    io.may("copyToCpu", e.copyToCpu);
    io.may("l2Domain", e.l2Domain);
    io.may("egrPort", e.egrPort);
    io.may("routed", e.routed);
    io.may("dropCtl", e.dropCtl);
}
void members(auto& io, Do::Digest& e) {
    io.entries("entries", e.entries, mostDigestEntries);
}
void members(auto& io, Do::DigestField& e) {
    auto const& names = SdkSeam::digestFieldNames;
    auto field = static_cast<std::size_t>(std::ranges::find(names, e.field) - names.begin());
    io.mustWord("field", field, names);
    e.field = names[field];
    io.must("size", e.size);
}

}  // namespace Scenario
