// One engine alone: its jobs and answers, no clients.
#pragma once

#include "VynPacketTracer/Fixture.h"
#include "VynPacketTracer/VynPtPktGenSm.h"

// A trace of the engine.
inline std::string engineTrace(unsigned level, std::string const& text) {
    return "VynPtPktGenSm/" + std::to_string(level) + " " + text;
}

// The lines that the task and the reactors cause, step by step.
inline Lines const worked{engineTrace(7, "doWork:")};
inline Lines const looked{engineTrace(7, "doWork:"), engineTrace(7, "processRequest:")};
inline Lines const disabled{"sdk disableAppId session=1 device=0 pipe=0 appId=4 -> 0",
                            "sdk disablePktGen session=1 device=0 pipe=0 genPort=68 -> 0"};

// Asks for the phase-0 data of a job.
inline Lines asked(std::uint32_t number, std::string const& ingress = "Ethernet1") {
    return {engineTrace(7, "getPhase0Data:clientName:noc reqId:" + std::to_string(number)),
            "phase0 configDel " + ingress, "phase0 configIs " + ingress};
}

inline Lines addHandled(std::uint32_t number) {
    std::string const key = std::to_string(number);
    return {"cfg add noc/" + key,
            engineTrace(7, "handleConfig:clientName:noc reqId:" + key + " add:true")};
}
inline Lines delHandled(std::uint32_t number) {
    std::string const key = std::to_string(number);
    return {"cfg del noc/" + key,
            engineTrace(7, "handleConfig:clientName:noc reqId:" + key + " add:false")};
}

class EngineTest : public Switch {
  protected:
    using State = VynPacketTracer::PktGenState;

    // An engine with or without the trace digest, after its first run: it sleeps.
    void startAwake(bool pktTracerSupported = true) {
        engine = VynPacketTracer::pktGenSmFactory(config, chip.phase0Data(), status, 1,
                                                  chip.device(), pktTracerSupported,
                                                  chip.learnQuanta(), chip.digestLayout(), loop);
    }
    void start(bool pktTracerSupported = true) {
        startAwake(pktTracerSupported);
        turn();
        recorder.take();
    }

    // A job of a packet that enters at index 4 of a pipe.
    void job(std::uint32_t number, std::string_view ingress = "Ethernet1", std::uint8_t pipe = 0) {
        config->cfgIs(id("noc", number), {0xca, 0xfe}, {pipe, VynPortTypes::PortIndex(4)},
                      intf(ingress));
    }
    void withdraw(std::uint32_t number) { config->cfgDel(id("noc", number)); }
    bool isAnswered(std::uint32_t number) const { return status->statusHas(id("noc", number)); }

    // From now on a run of the task takes one step at most.
    void oneStepARun() { loop->yieldAfterIs(1); }

    // Job 1 brings the engine into a state, one step a run.
    void toWaitPhase0Data() {
        oneStepARun();
        job(1);
        turn();
        EXPECT_EQ(engine->state(), State::waitPhase0Data);
    }
    void toPhase0DataReady() {
        toWaitPhase0Data();
        phase0("Ethernet1", {4, 0});
        EXPECT_EQ(engine->state(), State::phase0DataReady);
    }
    void toWaitPktSent() {
        toPhase0DataReady();
        turn();
        EXPECT_EQ(engine->state(), State::waitPktSent);
    }
    void toReset() {
        toWaitPktSent();
        counter(1);
        turn();
        EXPECT_EQ(engine->state(), State::reset);
    }
    void toError() {
        toWaitPhase0Data();
        withdraw(1);
        EXPECT_EQ(engine->state(), State::error);
    }
    // Job 1 is served; the engine is idle and has not looked for another one yet.
    void toIdleAgain() {
        toReset();
        turn();
        EXPECT_EQ(engine->state(), State::idle);
    }

    bool isScheduled() const { return engine->task()->isScheduled(); }
    Lines turned() {
        return after([&] { turn(); });
    }

    Vanta::Ptr<VynPacketTracer::PktGenConfig> config = VynPacketTracer::pktGenConfigFactory();
    Vanta::Ptr<VynPacketTracer::PktGenStatus> status = VynPacketTracer::pktGenStatusFactory();
    Vanta::Ptr<VynPacketTracer::PktGenSm> engine;
};

// An engine that has not run yet.
class AwakeEngineTest : public EngineTest {
  protected:
    AwakeEngineTest() { startAwake(); }
};
