// The ring back end: every statement of every level, in a file of fixed size that is mapped into
// memory. The file outlives a crash of the process, and RingReader.h reads it at any time.
//
// There is no ring until one is named, by ringIs() or by the environment variable VYNPT_RING, which
// names a file that is made when the process runs its first statement. A process that cannot make
// it says so on standard error and runs without.
//
// A ring starts fresh: a ring that lies under its name goes, unless a living process still writes
// it. Any other file under that name is left alone, and is an error.
//
// Each of the first three threads has a ring of its own, which it shares with nobody and so writes
// without waiting for another processor; further threads, and statements inside another one (of a
// value's writer, or a signal's handler), share a fourth. A thread that ends leaves its ring to the
// next one. A child process that was forked goes on in the shared ring of its parent.
//
// A record keeps its values in binary. Of a text it keeps 95 bytes (less if a record with many
// values runs out of its 224 bytes), of formats and handles beyond 512 distinct statements nothing
// but the values.
//
// Threads: any. A statement takes no lock (but for the first record of each format) and waits for
// nobody. Where a thread stood still inside a record of the shared ring while others went once
// around it, that record is lost, and the one whose slot it takes may be.
#pragma once

#include <cstddef>
#include <span>
#include <string>

#include "Trace/Handle.h"
#include "Trace/RingFile.h"
#include "Trace/Value.h"
#include "VynExport.h"

namespace Trace {

inline constexpr std::size_t defaultRingRecords = 16384;

// From now on statements go to a fresh ring in `path`, and no longer to the one before. Each
// thread's own ring keeps `records` records of 64 bytes (rounded up to a power of two, at least 64),
// which have room for four values; longer ones take the room of two to four. The shared ring keeps a
// quarter as many, of any length.
// Errors: RingError; then everything stays as it was.
VYN_EXPORT void ringIs(std::string const& path, std::size_t records = defaultRingRecords);

// From now on statements go to no ring, whatever the environment says.
VYN_EXPORT void ringDel();

// Writes a statement to the ring, if there is one. Internal to Trace.
// Errors: what a value's writer throws; then there is no record.
void writeRing(Handle const& handle, unsigned level, char const* format,
               std::span<Value const> values);

// Internal to Trace: whether the environment names a ring.
bool environmentNamesRing() noexcept;

}  // namespace Trace
