#include "simulate/Board.h"

#include <cstring>

namespace Simulate {

p4_pd_status_t Board::getPktCounters(p4_pd_sess_hdl_t session, std::uint32_t pipe,
                                     std::uint32_t appId, std::uint64_t& count) {
    auto const rc = chip_.getPktCounters(session, pipe, appId, count);
    recorder_.call({rc, count}, "getPktCounters session ", session, " pipe ", pipe, " app ", appId);
    return rc;
}

p4_pd_status_t Board::genOnePkt(p4_pd_sess_hdl_t session, std::uint32_t pipe, std::uint32_t genPort,
                                std::uint8_t portIndex, std::uint32_t appId,
                                std::span<std::uint8_t const> pkt,
                                std::span<std::uint8_t const> phase0, std::uint16_t pktId) {
    auto const rc = chip_.genOnePkt(session, pipe, genPort, portIndex, appId, pkt, phase0, pktId);
    recorder_.call({rc, 0}, "genOnePkt session ", session, " pipe ", pipe, " gen ", genPort,
                   " port ", unsigned{portIndex}, " app ", appId, " pkt ", pkt.size(), ":",
                   digestOf(pkt), " phase0 ", phase0.size(), ":", digestOf(phase0), " id ", pktId);
    packets_.injected(pipe, portIndex, pkt, pktId, rc == 0);
    return rc;
}

p4_pd_status_t Board::disableAppId(p4_pd_sess_hdl_t session, std::uint32_t pipe,
                                   std::uint32_t appId) {
    auto const rc = chip_.disableAppId(session, pipe, appId);
    recorder_.call({rc, 0}, "disableAppId session ", session, " pipe ", pipe, " app ", appId);
    packets_.appDisabled(rc == 0);
    return rc;
}

p4_pd_status_t Board::disablePktGen(p4_pd_sess_hdl_t session, std::uint32_t pipe,
                                    std::uint32_t genPort) {
    auto const rc = chip_.disablePktGen(session, pipe, genPort);
    recorder_.call({rc, 0}, "disablePktGen session ", session, " pipe ", pipe, " gen ", genPort);
    packets_.generatorDisabled(rc == 0);
    return rc;
}

p4_pd_status_t Board::digestRegister(p4_pd_sess_hdl_t session, std::uint32_t handle,
                                     pipe_flow_lrn_notify_cb callback, void* cookie) {
    auto const rc = chip_.digestRegister(
        session, handle,
        [](p4_pd_sess_hdl_t, pipe_flow_lrn_msg_t* message, void* self) {
            static_cast<Board*>(self)->deliver(*message, message);
            return p4_pd_status_t{0};
        },
        this);
    recorder_.call({rc, 0}, "digestRegister session ", session, " handle ", handle);
    if (rc == 0) {
        session_ = session;
        callback_ = callback;
        cookie_ = cookie;
    }
    return rc;
}

p4_pd_status_t Board::digestDeregister(p4_pd_sess_hdl_t session, std::uint32_t handle) {
    auto const rc = chip_.digestDeregister(session, handle);
    recorder_.call({rc, 0}, "digestDeregister session ", session, " handle ", handle);
    callback_ = nullptr;
    return rc;
}

p4_pd_status_t Board::notifyAck(p4_pd_sess_hdl_t session, std::uint32_t handle,
                                pipe_flow_lrn_msg_t*) {
    auto const rc = original_ != nullptr ? chip_.notifyAck(session, handle, original_) : 0;
    recorder_.call({rc, 0}, "notifyAck session ", session, " handle ", handle);
    return rc;
}

void Board::forge(std::vector<std::uint8_t> const& entries, std::uint16_t count) {
    if (callback_ != nullptr) {
        pipe_flow_lrn_msg_t message{};
        message.num_entries = count;
        message.entries = entries.data();
        deliver(message, nullptr);
    }
}

void Board::deliver(pipe_flow_lrn_msg_t message, pipe_flow_lrn_msg_t* original) {
    ++messages_;
    message.dev_tgt.device_id = Model::device;
    Wire::Message wired{message.num_entries, Bytes(8)};
    std::memcpy(wired.bytes.data(), &message.dev_tgt, 8);
    auto const* const first = static_cast<std::uint8_t const*>(message.entries);
    wired.bytes.insert(wired.bytes.end(), first,
                       first + message.num_entries * SoftChip::digestEntryBytes);
    recorder_.note("message of ", message.num_entries, ":", digestOf(wired.bytes));
    recorder_.wire().messages.push_back(std::move(wired));
    original_ = original;
    static_cast<void>(callback_(session_, &message, cookie_));
    original_ = nullptr;
}

// ---- Phase 0

Vanta::Ptr<Phase0Desk> Phase0Desk::Phase0DeskIs(Vanta::Ptr<SoftChip::Phase0Data> chip,
                                                Recorder& recorder, Packets& packets) {
    return Vanta::makeNode<Phase0Desk>(std::move(chip), recorder, packets);
}

Phase0Desk::Phase0Desk(Vanta::Ptr<SoftChip::Phase0Data> chip, Recorder& recorder, Packets& packets)
    : chip_(std::move(chip)), recorder_(recorder), packets_(packets) {
    subscriber_.subscribe<&Phase0Desk::announced>(chip_->publisher(), this);
}

void Phase0Desk::configIs(Plexa::IntfId const& intf) {
    recorder_.note("phase0 configIs ", intf);
    chip_->configIs(intf);
}

void Phase0Desk::configDel(Plexa::IntfId const& intf) {
    recorder_.note("phase0 configDel ", intf);
    dropElsewhere(intf);
}

void Phase0Desk::dropElsewhere(Plexa::IntfId const& intf) {
    chip_->configDel(intf);
    static_cast<void>(responseDel(intf));
}

void Phase0Desk::announced(Vanta::Change const& change) {
    auto const intf = change.key.get<Plexa::IntfId>();
    auto const* const response = chip_->response().find(intf);
    Wire::Announcement announcement{intf, response != nullptr, 0, {}};
    if (response != nullptr) {
        auto const data = response->value.data.view();
        announcement.status = response->value.status;
        announcement.data.assign(data.begin(), data.end());
        responseIs(intf, response->value);
        packets_.answered(intf);
    }
    recorder_.note("phase0 answer ", intf, response != nullptr ? " there" : " gone");
    recorder_.wire().announcements.push_back(std::move(announcement));
    publishResponse(intf);
}

}  // namespace Simulate
