// `vynpt replay`: a scenario's events in, its observations out.
#include <CLI/CLI.hpp>
#include <iostream>

#include "cli/Command.h"
#include "replay/Replay.h"

namespace Cli {

void addReplayCommand(CLI::App& app, int& exitStatus) {
    struct Arguments {
        std::string file;
        bool dump = false;
    };
    auto const arguments = std::make_shared<Arguments>();
    auto* const command = app.add_subcommand(
        "replay", "Drive one tracer through a scenario and print everything that can be seen");
    command->add_option("FILE", arguments->file, "The scenario (- for standard input)")
        ->type_name("")
        ->required();
    command->add_flag("--dump", arguments->dump, "At the end, print every object");
    command->footer(
        "Exit status: 0 when the whole file was run, 2 for a bad line, 3 when the process would\n"
        "have ended.\n\n"
        "Example:\n"
        "  vynpt replay examples/scenarios/first.jsonl\n");
    command->callback([arguments, &exitStatus] {
        exitStatus = Replay::runFile(arguments->file, std::cout, std::cerr, arguments->dump);
    });
}

}  // namespace Cli
