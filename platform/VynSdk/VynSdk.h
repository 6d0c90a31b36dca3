// The chip SDK's wrappers for the packet generator. Declarations only: the process that loads the
// plug-in brings the chip that defines them.
//
// All return 0 on success and another value on failure. Thread: the event thread.
#pragma once

#include <cstdint>
#include <span>

#include "PipeMgr/PipeMgr.h"
#include "VynExport.h"

namespace VynSdk {

// Reads the packet counter of the generator's application in a pipe: packets generated so far.
VYN_EXPORT p4_pd_status_t getPktCounters(p4_pd_sess_hdl_t session, std::uint8_t device,
                                         std::uint32_t pipe, std::uint32_t appId,
                                         std::uint64_t& count);

// Injects one copy of a packet at a port, preceded by the port's phase-0 data. `portIndex` is the
// index in the pipe. The bytes are copied before the call returns.
VYN_EXPORT p4_pd_status_t genOnePkt(p4_pd_sess_hdl_t session, std::uint8_t device,
                                    std::uint32_t pipe, std::uint32_t genPort,
                                    std::uint8_t portIndex, std::uint32_t appId,
                                    std::span<std::uint8_t const> pkt,
                                    std::span<std::uint8_t const> phase0, std::uint16_t pktId);

// Disables the generator's application in a pipe.
VYN_EXPORT p4_pd_status_t disableAppId(p4_pd_sess_hdl_t session, std::uint8_t device,
                                       std::uint32_t pipe, std::uint32_t appId);

// Disables the packet generator of a pipe.
VYN_EXPORT p4_pd_status_t disablePktGen(p4_pd_sess_hdl_t session, std::uint8_t device,
                                        std::uint32_t pipe, std::uint32_t genPort);

}  // namespace VynSdk
