#include "simulate/Board.h"

#include <cstring>

namespace Simulate {

using SdkSeam::SdkFunction;

// A forged message is not the chip's, so its acknowledgement is not handed on.
void Board::called(SdkSeam::SdkCall& call, SdkSeam::Chip& behind) {
    if (call.function != SdkFunction::notifyAck || call.message != forged_) {
        behind.call(call);
    }
    logbook_.call(call);
    if (call.function == SdkFunction::genOnePkt) {
        packets_.injected(call);
    } else if (call.function == SdkFunction::disableAppId) {
        packets_.appDisabled(call.rc == 0);
    } else if (call.function == SdkFunction::disablePktGen) {
        packets_.generatorDisabled(call.rc == 0);
    }
}

void Board::forge(std::vector<SdkSeam::DigestEntry> const& entries) {
    if (registered()) {
        pipe_flow_lrn_msg_t message{};
        message.dev_tgt.device_id = Model::device;
        message.num_entries = static_cast<std::uint16_t>(entries.size());
        message.entries = entries.data();
        forged_ = &message;
        static_cast<void>(received(&message, front_.receiver()));
        forged_ = nullptr;
    }
}

p4_pd_status_t Board::received(pipe_flow_lrn_msg_t* message,
                               SdkSeam::DigestReceiver const& receiver) {
    ++messages_;
    Wire::Message wired{message->num_entries, Bytes(8)};
    std::memcpy(wired.bytes.data(), &message->dev_tgt, 8);
    auto const* const first = static_cast<std::uint8_t const*>(message->entries);
    wired.bytes.insert(wired.bytes.end(), first,
                       first + message->num_entries * SdkSeam::digestEntryBytes);
    logbook_.note("message of ", message->num_entries, ":", digestOf(wired.bytes));
    logbook_.wire().messages.push_back(std::move(wired));
    return receiver(message);
}

// ---- Phase 0

Vanta::Ptr<Phase0Desk> Phase0Desk::Phase0DeskIs(Vanta::Ptr<SoftChip::Phase0Data> chip,
                                                Logbook& logbook, Packets& packets) {
    return Vanta::makeNode<Phase0Desk>(std::move(chip), logbook, packets);
}

Phase0Desk::Phase0Desk(Vanta::Ptr<SoftChip::Phase0Data> chip, Logbook& logbook, Packets& packets)
    : chip_(std::move(chip)), logbook_(logbook), packets_(packets) {
    subscriber_.subscribe<&Phase0Desk::announced>(chip_->publisher(), this);
}

void Phase0Desk::configIs(Plexa::IntfId const& intf) {
    logbook_.note("phase0 configIs ", intf);
    chip_->configIs(intf);
}

void Phase0Desk::configDel(Plexa::IntfId const& intf) {
    logbook_.note("phase0 configDel ", intf);
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
    logbook_.note("phase0 answer ", intf, response != nullptr ? " there" : " gone");
    logbook_.wire().announcements.push_back(std::move(announcement));
    publishResponse(intf);
}

}  // namespace Simulate
