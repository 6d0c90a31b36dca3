// One packet to be traced: what the user gave, and how a request describes it.
#pragma once

#include <sys/time.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "PacketTracer/PacketFields.h"
#include "PacketTracer/Request.h"
#include "Vanta/Bytes.h"
#include "cli/FrameFacts.h"

namespace Cli {

// A plain value; thread: the event thread, because of the bytes.
struct Packet {
    std::uint64_t number = 1;  // of the frame in its capture, from 1
    timeval time{};            // when it was captured

    // A raw frame; of a packet by fields the frame that is built from them, empty if none can be.
    Vanta::Bytes frame;
    FrameFacts facts;
    std::optional<PacketTracer::PacketFields> fields;
    std::vector<PacketTracer::NamedField> defaults;  // the fields that the user did not give

    // The packet in one line.
    std::string text() const;
    // Why the tracer refuses such a packet, in a few words; empty if it does not.
    std::string refusalReason() const;
    // Writes the packet into a request, all but the ingress interface.
    void describeTo(PacketTracer::Request& request) const;
};

// A raw frame, taken as it is.
Packet packetOfFrame(Vanta::Bytes frame);

// A packet by fields that are complete; `etherType` is 0 where it follows from them.
Packet packetOfFields(PacketTracer::PacketFields const& fields, std::uint16_t etherType);

}  // namespace Cli
