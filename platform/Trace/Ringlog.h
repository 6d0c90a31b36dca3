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
// A record keeps its values in binary. Of a text it keeps 95 bytes (less if a record with many
// values runs out of its 232 bytes), of formats and handles beyond 512 distinct statements nothing
// but the values.
//
// Threads: any. A statement takes no lock (but for the first record of each format) and waits for
// nobody; where a thread stood still inside a record while others went once around the ring, that
// record is lost, and the one whose place it takes may be.
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

// From now on statements go to a fresh ring in `path`, of `records` records of 256 bytes (rounded
// up to a power of two, at least 64), and no longer to the one before.
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
