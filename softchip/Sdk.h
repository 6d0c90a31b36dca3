// What the chip answers when it refuses a call, and the fixed numbers of its packet generator.
#pragma once

#include <cstddef>
#include <cstdint>

#include "sdkseam/SdkCall.h"

namespace SoftChip {

inline constexpr std::uint32_t generatorPort = 68;          // in every pipe
inline constexpr std::uint32_t generatorApp = 4;            // the one application that a pipe has
inline constexpr std::size_t generatorBufferBytes = 16384;  // the longest packet

using SdkSeam::SdkFunction;

// What a call returns. Everything but `ok` is a refusal: the call has changed nothing.
enum class Status : p4_pd_status_t {
    ok = 0,
    unknownSession,
    unknownPipe,
    unknownApp,
    unknownGenPort,
    unknownPort,         // no such port index in the pipe
    noPhase0,            // no phase-0 bytes
    badPacketSize,       // no packet bytes, or more than the generator's buffer holds
    unknownDigest,       // no digest has this handle
    digestRegistered,    // a second registration
    digestUnregistered,  // a handle that nobody is registered for
    unknownMessage,      // no such message is waiting for its acknowledgement
};

// The status in a few words.
char const* text(Status status);

}  // namespace SoftChip
