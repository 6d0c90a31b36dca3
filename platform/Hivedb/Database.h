// The state database of a process: paths, and the directory that is mounted at each.
//
// A path is a '/' and a name, once or more: "/packetTracer/config". A name is of letters, digits
// and the characters '-', '_', '.' and ':'; it is not "." or "..". Paths are only compared: a
// directory knows nothing of one that is mounted below its own path.
//
// Mounts are counted: mounting a path that is mounted gives the same directory, and the path leaves
// the database with the last unmount. The directory itself lives as long as somebody holds it;
// mounting its former path makes a new one.
// Thread: the event thread.
#pragma once

#include <string_view>
#include <vector>

#include "Kel/Collection.h"
#include "Kel/Dir.h"
#include "Kel/Error.h"
#include "Kel/Object.h"
#include "Vanta/String.h"
#include "VynExport.h"

namespace Hivedb {

// A text that is no path. Says at which character, counted from 1, and what was expected there.
class VYN_EXPORT PathError : public Kel::Error {
  public:
    PathError(std::string_view path, std::size_t position, std::string_view expected);
};

// A directory and how many have mounted it.
struct Mount {
    Vanta::Ptr<Kel::Dir> dir;
    std::uint64_t count = 0;
};

inline void reflectValue(Kel::AttributeSink& sink, Mount const& mount) {
    sink.listStart();
    sink.object(mount.dir.get());
    sink.number(mount.count);
    sink.listEnd();
}

class VYN_EXPORT Database final : public Kel::Object {
  public:
    using Mounts = Kel::Collection<Vanta::String, Mount>;

    // A database in which nothing is mounted.
    static Vanta::Ptr<Database> DatabaseIs();

    // The directory of a path, made if nothing is mounted there. Counts one mount more.
    // Errors: PathError; std::bad_alloc; nothing changed.
    Vanta::Ptr<Kel::Dir> mount(Vanta::String const& path);

    // Counts one mount less. False, and nothing changed, if the path is not mounted.
    bool unmount(Vanta::String const& path);

    // The mounted paths below `prefix`, in the order in which they were mounted first. "Below" goes
    // by whole names: "/a/b" is below "/a", "/ab" and "/a" are not. Every path is below "/" and
    // below the empty prefix.
    std::vector<Vanta::String> list(std::string_view prefix = {}) const;

    Mounts const& mounts() const noexcept { return mounts_; }
    Kel::TypeInfo const& typeInfo() const noexcept override;

  private:
    friend struct Vanta::NodeFactory;
    Database() = default;
    ~Database() override = default;

    Mounts mounts_;
};

}  // namespace Hivedb
