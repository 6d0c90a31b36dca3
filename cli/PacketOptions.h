// The command's options that describe a packet by its fields: --eth-dst, --ip-dst, --vlan, ...
//
// They are named after PacketTracer::namedFields(), so that a field that an answer lists can be
// given as an option.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "PacketTracer/PacketFields.h"

namespace CLI {
class App;
}

namespace Cli {

class PacketOptions {
  public:
    PacketOptions() = default;
    PacketOptions(PacketOptions const&) = delete;
    PacketOptions& operator=(PacketOptions const&) = delete;

    // Adds the options. The object must live until the command was parsed.
    void addTo(CLI::App& command);

    // Whether any of them was given.
    bool given() const;

    // The fields that were given. Errors: UsageError naming the option and what it expects.
    PacketTracer::PacketFields fields() const;

    // --ether-type; 0 if it was not given. Errors: as above.
    std::uint16_t etherType() const;

    // --vlan none: no tag, not even by default.
    bool untagged() const;

  private:
    std::map<std::string, std::vector<std::string>> texts_;  // by option, in the order given
    std::string etherType_;
    bool dontFragment_ = false;
};

}  // namespace Cli
