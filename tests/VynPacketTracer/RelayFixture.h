// A running tracer with the client "noc", and what its relay says.
#pragma once

#include "VynPacketTracer/TracerFixture.h"

inline std::string relayed(std::string const& key, bool del = false) {
    auto const slash = key.find('/');
    return "VynPtSm/7 handlePktGenStatus:client:" + key.substr(0, slash) +
           " reqId:" + key.substr(slash + 1) + (del ? " del:true" : " del:false");
}
inline std::string updated(std::string const& number, bool ready) {
    return "VynPtClientSm/7 updateResult:client:noc reqId:" + number +
           (ready ? " ready:true" : " ready:false");
}

class RelayTest : public TracerTest {
  protected:
    RelayTest() {
        start();
        client("noc");
        recorder.take();
    }
    bool isWatched(std::uint32_t number) const { return tracer->localStatusHas(id("noc", number)); }
};
