// A whole tracer: directories with clients, the root, the engine, the scripted chip.
#pragma once

#include "VynPacketTracer/Fixture.h"
#include "VynPacketTracer/VynPtSm.h"

inline std::string handled(std::string const& name) {
    return "VynPtSm/7 handleClient:client " + name;
}

// The lines when the state machine of a client without requests is made.
inline Lines begun(std::string const& name) {
    return {handled(name), "VynPtClientSm/7 handleInitialized:client " + name,
            "VynPtClientSm/7 handleResults:client " + name + " #status:0",
            "VynPtClientSm/7 handleRequests:client " + name + " #request:0"};
}

class TracerTest : public Switch {
  protected:
    TracerTest() {
        port("Ethernet1", 0, 4);
        egressPort(132, "Ethernet2");
    }

    // A new root, which the fixture does not keep.
    Vanta::Ptr<VynPacketTracer::PacketTracerSm> made(bool pktTracerSupported = true,
                                                     bool pktGenSupported = true) {
        return VynPacketTracer::packetTracerSmFactory(
            config, status, chip.phase0Data(), pktGenSupported, pktTracerSupported, 1,
            chip.device(), chip.learnQuanta(), chip.digestLayout(), loop, systemStatus, fcsd,
            bridgingConfig, chipStatus);
    }
    // Makes the tracer. Its engine has run once and sleeps.
    void start(bool pktTracerSupported = true) {
        tracer = made(pktTracerSupported);
        turn();
        recorder.take();
    }

    // ---- The directories

    Vanta::Ptr<PacketTracer::ClientConfig> clientConfig(std::string_view name) {
        auto const entity = PacketTracer::ClientConfig::ClientConfigIs();
        config->entryIs(name, entity);
        return entity;
    }
    Vanta::Ptr<PacketTracer::ClientStatus> clientStatus(std::string_view name) {
        auto const entity = PacketTracer::ClientStatus::ClientStatusIs();
        status->entryIs(name, entity);
        return entity;
    }
    void client(std::string_view name) {
        clientConfig(name);
        clientStatus(name);
    }
    Vanta::Ptr<PacketTracer::ClientConfig> configOf(std::string_view name) const {
        return config->entity<PacketTracer::ClientConfig>(name);
    }
    Vanta::Ptr<PacketTracer::ClientStatus> statusOf(std::string_view name) const {
        return status->entity<PacketTracer::ClientStatus>(name);
    }
    Vanta::Ptr<VynPacketTracer::PacketTracerClientSm> clientSm(std::string_view name) const {
        return tracer->clientSm(name);
    }

    // ---- Requests of the client "noc"

    Vanta::Ptr<PacketTracer::Request> request(std::uint32_t number,
                                              std::string_view ingress = "Ethernet1") {
        auto const made = makeRequest("noc", number, ingress);
        configOf("noc")->requestIs(made);
        return made;
    }
    void withdraw(std::uint32_t number) { configOf("noc")->requestDel(id("noc", number)); }
    // An answer of the engine, as the engine makes it.
    Vanta::Ptr<VynPacketTracer::PktGenStatusData> answer(std::uint32_t number,
                                                         std::string_view name = "noc") {
        return tracer->pktGenStatus()->statusIs(id(name, number));
    }
    Vanta::Ptr<PacketTracer::Result> result(std::uint32_t number) const {
        return statusOf("noc")->result(id("noc", number));
    }

    Vanta::Ptr<Kel::Dir> config = Kel::Dir::DirIs();
    Vanta::Ptr<Kel::Dir> status = Kel::Dir::DirIs();
    Vanta::Ptr<VynPacketTracer::PacketTracerSm> tracer;
};

// A tracer without clients.
class RunningTracerTest : public TracerTest {
  protected:
    RunningTracerTest() { start(); }
};
