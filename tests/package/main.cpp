// A tracer on the software chip, made and released: all that a forwarding agent needs to begin.
#include "VynPacketTracer/VynPtSm.h"
#include "sdkseam/DigestLayout.h"
#include "softchip/Phase0Data.h"
#include "softchip/SoftChip.h"

int main() {
    SoftChip::SoftChip chip({});
    auto const loop = Orb::TaskSchedulerRoot::TaskSchedulerRootIs();
    auto const tracer = VynPacketTracer::packetTracerSmFactory(
        Kel::Dir::DirIs(), Kel::Dir::DirIs(), SoftChip::Phase0Data::Phase0DataIs(loop), true, true,
        1, 0, SdkSeam::LearnQuanta::LearnQuantaIs(), SdkSeam::DigestLayout::DigestLayoutIs(), loop,
        VynSystem::SystemStatus::SystemStatusIs(), Fen::FenCommonSmData::FenCommonSmDataIs(),
        Bridging::Config::ConfigIs(), VynSlice::ChipStatus::ChipStatusIs());
    loop->turn();
    return tracer->pktGenSm()->state() == VynPacketTracer::PktGenState::idle ? 0 : 1;
}
