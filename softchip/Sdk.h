// The SDK's functions by number, what the chip answers when it refuses, and the fixed numbers of
// its packet generator.
#pragma once

#include <cstddef>
#include <cstdint>

#include "PipeMgr/PipeMgr.h"

namespace SoftChip {

inline constexpr std::uint32_t generatorPort = 68;          // in every pipe
inline constexpr std::uint32_t generatorApp = 4;            // the one application that a pipe has
inline constexpr std::size_t generatorBufferBytes = 16384;  // the longest packet

enum class Call : std::uint8_t {
    getPktCounters,
    genOnePkt,
    disableAppId,
    disablePktGen,
    digestRegister,
    digestDeregister,
    notifyAck,
};
inline constexpr std::size_t callCount = 7;

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

// The function's name, as the SDK spells it; the status in a few words.
char const* text(Call call);
char const* text(Status status);

}  // namespace SoftChip
