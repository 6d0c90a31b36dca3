#include "agent/RecordedChip.h"

#include "softchip/DigestLayout.h"

namespace Agent {

using ScriptChip::SdkFunction;

p4_pd_status_t RecordedChip::noted(SdkFunction call, p4_pd_status_t rc) {
    writer_.use([&](ScenarioWriter& writer) { writer.called(call, rc); });
    return rc;
}

p4_pd_status_t RecordedChip::getPktCounters(p4_pd_sess_hdl_t session, std::uint32_t pipe,
                                            std::uint32_t appId, std::uint64_t& count) {
    auto const rc = front_.behind().getPktCounters(session, pipe, appId, count);
    writer_.use([&](ScenarioWriter& writer) { writer.counterRead(pipe, count); });
    return noted(SdkFunction::getPktCounters, rc);
}

p4_pd_status_t RecordedChip::genOnePkt(p4_pd_sess_hdl_t session, std::uint32_t pipe,
                                       std::uint32_t genPort, std::uint8_t portIndex,
                                       std::uint32_t appId, std::span<std::uint8_t const> pkt,
                                       std::span<std::uint8_t const> phase0, std::uint16_t pktId) {
    return noted(
        SdkFunction::genOnePkt,
        front_.behind().genOnePkt(session, pipe, genPort, portIndex, appId, pkt, phase0, pktId));
}

p4_pd_status_t RecordedChip::disableAppId(p4_pd_sess_hdl_t session, std::uint32_t pipe,
                                          std::uint32_t appId) {
    return noted(SdkFunction::disableAppId, front_.behind().disableAppId(session, pipe, appId));
}

p4_pd_status_t RecordedChip::disablePktGen(p4_pd_sess_hdl_t session, std::uint32_t pipe,
                                           std::uint32_t genPort) {
    return noted(SdkFunction::disablePktGen, front_.behind().disablePktGen(session, pipe, genPort));
}

p4_pd_status_t RecordedChip::digestRegister(p4_pd_sess_hdl_t session, std::uint32_t handle,
                                            pipe_flow_lrn_notify_cb callback, void* cookie) {
    callback_ = callback;
    cookie_ = cookie;
    return noted(SdkFunction::digestRegister,
                 front_.behind().digestRegister(session, handle, digest, this));
}

p4_pd_status_t RecordedChip::digestDeregister(p4_pd_sess_hdl_t session, std::uint32_t handle) {
    return noted(SdkFunction::digestDeregister, front_.behind().digestDeregister(session, handle));
}

p4_pd_status_t RecordedChip::notifyAck(p4_pd_sess_hdl_t session, std::uint32_t handle,
                                       pipe_flow_lrn_msg_t* message) {
    auto const rc = front_.behind().notifyAck(session, handle, message);
    writer_.use([&](ScenarioWriter& writer) { writer.acknowledged(rc); });
    return rc;
}

// Noted ahead of the tracer: its event thread may have read the digest before this returns.
p4_pd_status_t RecordedChip::digest(p4_pd_sess_hdl_t session, pipe_flow_lrn_msg_t* message,
                                    void* cookie) {
    auto& self = *static_cast<RecordedChip*>(cookie);
    ScenarioWriter::Reception reception = 0;
    self.writer_.use([&](ScenarioWriter& writer) {
        reception =
            writer.received({static_cast<std::uint8_t const*>(message->entries),
                             std::size_t{message->num_entries} * SoftChip::digestEntryBytes});
    });
    auto const rc = self.callback_(session, message, self.cookie_);
    self.writer_.use([&](ScenarioWriter& writer) { writer.done(reception); });
    return rc;
}

}  // namespace Agent
