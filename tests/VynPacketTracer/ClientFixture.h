// One client state machine alone: its directories' entries, the engine's jobs, no engine.
#pragma once

#include "VynPacketTracer/Fixture.h"
#include "VynPacketTracer/VynPtClientSm.h"

// The lines that an accepted request causes.
inline Lines accepted(std::uint32_t number) {
    std::string const key = std::to_string(number);
    return {"VynPtClientSm/7 handleRequest:client:noc reqId:" + key,
            "VynPtClientSm/7 isValidRequest:client:noc reqId:" + key, "cfg add noc/" + key};
}

// The lines that an accepted request causes when it is handled again.
inline Lines acceptedAgain(std::uint32_t number) {
    Lines lines = accepted(number);
    lines.pop_back();
    return lines;
}

// What the pipeline says of a packet; by default it was flooded in no VLAN.
struct Outcome {
    std::uint16_t port = VynPortTypes::PortIndex::invalid;
    std::uint16_t l2Domain = 0;
    bool routed = false;
    bool dropped = false;
    bool copyToCpu = false;
};

class ClientTest : public Switch {
  protected:
    ClientTest() { port("Ethernet1", 0, 4); }

    // Makes the client's state machine.
    void start() {
        client = VynPacketTracer::packetTracerClientSmFactory("noc", clientConfig, clientStatus,
                                                              pktGenConfig, systemStatus, fcsd,
                                                              bridgingConfig, chipStatus);
    }

    // The client writes a request, which replaces one that is there.
    Vanta::Ptr<PacketTracer::Request> request(std::uint32_t number,
                                              std::string_view ingress = "Ethernet1",
                                              bool valid = true) {
        auto const made = makeRequest("noc", number, ingress, valid);
        clientConfig->requestIs(made);
        return made;
    }
    void withdraw(std::uint32_t number) { clientConfig->requestDel(id("noc", number)); }

    // A job as an earlier version of the request may have left it.
    Vanta::Ptr<VynPacketTracer::PktGenCfgData> job(std::uint32_t number,
                                                   std::string_view ingress = "Ethernet1") {
        return pktGenConfig->cfgIs(id("noc", number), {1, 2, 3}, {}, intf(ingress));
    }
    Vanta::Ptr<PacketTracer::Result> result(std::uint32_t number) const {
        return clientStatus->result(id("noc", number));
    }

    // An answer of the engine.
    static Vanta::Ptr<VynPacketTracer::PktGenStatusData> answer(std::uint32_t number,
                                                                Outcome const& outcome,
                                                                bool ready = true) {
        auto const made = VynPacketTracer::pktGenStatusDataFactory(id("noc", number));
        made->egrPortInfoIs({0, VynPortTypes::PortIndex(outcome.port)});
        made->egrL2DomainIs(outcome.l2Domain);
        made->routedIs(outcome.routed);
        made->droppedIs(outcome.dropped);
        made->copyToCpuIs(outcome.copyToCpu);
        made->readyIs(ready);
        return made;
    }
    // The lines when the client gets an answer for request 1, which came in on Ethernet1.
    Lines update(Outcome const& outcome) {
        if (!pktGenConfig->cfgHas(id("noc", 1))) {
            job(1);
        }
        auto const status = answer(1, outcome);
        return after([&] { client->updateResult(status); });
    }
    // The same, of the result alone.
    Lines updateResult(Outcome const& outcome) { return beginning("result", update(outcome)); }

    Vanta::Ptr<PacketTracer::ClientConfig> clientConfig =
        PacketTracer::ClientConfig::ClientConfigIs();
    Vanta::Ptr<PacketTracer::ClientStatus> clientStatus =
        PacketTracer::ClientStatus::ClientStatusIs();
    Vanta::Ptr<VynPacketTracer::PktGenConfig> pktGenConfig = VynPacketTracer::pktGenConfigFactory();
    Vanta::Ptr<VynPacketTracer::PacketTracerClientSm> client;
};

// A client that has begun without requests.
class RunningClientTest : public ClientTest {
  protected:
    RunningClientTest() { start(); }
};
