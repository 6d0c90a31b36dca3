#include "agent/RecordedChip.h"

#include "sdkseam/TraceDigest.h"

namespace Agent {

using SdkSeam::SdkFunction;

void RecordedChip::called(SdkSeam::SdkCall& call, SdkSeam::Chip& behind) {
    behind.call(call);
    writer_.use([&call](Scenario::RunWriter& writer) {
        if (call.function == SdkFunction::notifyAck) {
            writer.acknowledged(call.rc);
            return;
        }
        if (call.function == SdkFunction::getPktCounters) {
            writer.counterRead(call.pipe, call.count);
        }
        writer.called(call.function, call.rc);
    });
}

// Noted before the tracer gets it: the event thread may have read the digest before this returns.
p4_pd_status_t RecordedChip::received(pipe_flow_lrn_msg_t* message,
                                      SdkSeam::DigestReceiver const& receiver) {
    Scenario::RunWriter::Reception reception = 0;
    writer_.use([&](Scenario::RunWriter& writer) {
        reception =
            writer.received({static_cast<std::uint8_t const*>(message->entries),
                             std::size_t{message->num_entries} * SdkSeam::digestEntryBytes});
    });
    auto const rc = receiver(message);
    writer_.use([&](Scenario::RunWriter& writer) { writer.done(reception); });
    return rc;
}

}  // namespace Agent
