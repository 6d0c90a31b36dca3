// The lines of a scenario, as docs/scenario.md describes them, from what an agent knows.
//
// Texts that are not valid UTF-8 get a replacement character where they are not.
// Thread: any; what reads objects of the framework, the event thread.
#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "PacketTracer/Request.h"
#include "Plexa/IntfId.h"
#include "VynSdk/Phase0DataIntf.h"
#include "agent/DeriveState.h"

namespace Agent {

// One line, without its end; several lines with ends between them where the name says so.
namespace Line {

std::string start(bool pktTracerSupported, bool pktGenSupported, std::uint32_t session,
                  std::uint8_t device);
std::string stop();
std::string turn(std::uint64_t times);
std::string yieldAfter(std::uint32_t checks);

std::string clientConfig(std::string_view client, std::string_view entity);
std::string clientConfigDel(std::string_view client);
std::string clientStatus(std::string_view client, std::string_view entity);
std::string clientStatusDel(std::string_view client);
std::string request(PacketTracer::Request const& request);
// The lines that make the request of the scenario what this one is after an attribute changed; none
// for an attribute that a scenario does not have.
std::vector<std::string> requestSet(PacketTracer::Request const& request,
                                    Vanta::AttributeNumber attribute);
std::string requestDel(PacketTracer::RequestId const& id);
std::string result(PacketTracer::RequestId const& id);

std::string phase0(Plexa::IntfId const& intf, VynSdk::Phase0DataResponse const& response);
std::string phase0Del(Plexa::IntfId const& intf);
std::string counter(std::uint32_t pipe, std::span<std::uint64_t const> values);
std::string sdkReturn(std::string_view call, std::int32_t rc, std::uint64_t times,
                      std::uint64_t after);
// A learn message's entries as the chips of this tree lay them out.
std::string digest(std::span<std::uint8_t const> entries);

// What people read and a scenario skips.
std::string comment(std::string_view text);

}  // namespace Line

// What makes a piece of forwarding state what it is, in the order in which the agent has it, each
// beside the line that takes it away.
struct StateLine {
    std::string remove;
    std::string make;
};
std::vector<StateLine> stateLines(ForwardingState const& state);

// Forwarding state as a scenario has it by now.
class RecordedState {
  public:
    // The lines that make it `state`, which it is from then on.
    std::vector<std::string> becomes(ForwardingState const& state);

  private:
    std::map<std::string, std::string> lines_;  // by what takes each away
};

}  // namespace Agent
