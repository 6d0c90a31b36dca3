// `vynpt interfaces`: the names of a switch's interfaces, for scripts and completion.
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <memory>

#include "cli/Command.h"
#include "cli/Output.h"
#include "switchfile/SwitchFile.h"

namespace Cli {
namespace {

struct Arguments {
    std::string switchFile;
    bool ingress = false;
};

void run(Arguments const& arguments) {
    auto const model = SwitchFile::readSwitchFile(arguments.switchFile);
    Output output(STDOUT_FILENO);
    for (auto const& intf : model.interfaces) {
        if (!arguments.ingress || model.entryPort(intf) != nullptr) {
            output.write(intf.id.stringValue() + "\n");
        }
    }
    output.flush();
}

}  // namespace

void addInterfacesCommand(CLI::App& app, int& exitStatus) {
    auto const arguments = std::make_shared<Arguments>();
    auto* const command =
        app.add_subcommand("interfaces", "Print the names of a switch's interfaces, one a line");
    command->add_option("--switch", arguments->switchFile, "The switch file")
        ->type_name("FILE")
        ->required();
    command->add_flag("--ingress", arguments->ingress, "Only those that a packet can come in on");
    command->footer(
        "Example:\n"
        "  vynpt interfaces --switch leaf.json --ingress\n");
    command->callback([arguments, &exitStatus] {
        run(*arguments);
        exitStatus = answered;
    });
}

}  // namespace Cli
