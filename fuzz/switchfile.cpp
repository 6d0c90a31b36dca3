// A switch file. It is refused with a message that says where, or it becomes a model from which
// tables and forwarding state can be derived.
#include "switchfile/SwitchFile.h"
#include "Target.h"
#include "agent/DeriveState.h"
#include "agent/DeriveTables.h"

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    try {
        auto const model = SwitchFile::parseSwitchFile(Fuzz::textOf(data, size), "input");
        static_cast<void>(Agent::deriveTables(model));
        static_cast<void>(Agent::deriveForwardingState(model));
        static_cast<void>(Agent::aclBindingNames(model));
    } catch (SwitchFile::InputError const& error) {
        Fuzz::check(std::string_view(error.what()).starts_with("input:"), "an error has a place");
    }
    return 0;
}
