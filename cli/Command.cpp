#include "cli/Command.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <csignal>
#include <exception>
#include <iostream>

#include "cli/Output.h"

namespace Cli {
namespace {

constexpr char const* description =
    "Where would this switch send this packet, if it came in on this interface?";

constexpr char const* examples =
    "Examples:\n"
    "  vynpt trace capture.pcap --switch leaf.json --in Ethernet1\n"
    "  vynpt trace --switch leaf.json --in Ethernet1 --ip-dst 10.1.20.11 --proto tcp --dport 443\n"
    "  vynpt interfaces --switch leaf.json\n"
    "  vynpt replay scenario.jsonl\n"
    "  vynpt ringlog trace.ring --follow\n\n"
    "`vynpt SUBCOMMAND --help` tells more about each, with examples.\n";

// The exit status of a process that SIGPIPE ends, for a process that does not get the signal.
constexpr int brokenPipe = 128 + 13;

int complain(std::string message) {
    std::ranges::replace(message, '\n', ' ');
    std::cerr << "vynpt: " << message << '\n';
    return badUsage;
}

}  // namespace

int runCommand(int argc, char const* const* argv) {
    // A file that may not grow further is then a failed write, and does not end the command.
    std::signal(SIGXFSZ, SIG_IGN);
    CLI::App app(description, "vynpt");
    app.require_subcommand(1);
    app.footer(examples);
    int exitStatus = answered;
    addTraceCommand(app, exitStatus);
    addInterfacesCommand(app, exitStatus);
    addReplayCommand(app, exitStatus);
    addRinglogCommand(app, exitStatus);
    try {
        app.parse(argc, argv);
    } catch (CLI::ParseError const& error) {
        bool const askedForHelp = error.get_exit_code() == 0;
        return askedForHelp ? app.exit(error) : complain(error.what());
    } catch (OutputError const& error) {
        return error.isClosed() ? brokenPipe : complain(error.what());
    } catch (std::exception const& error) {
        return complain(error.what());
    }
    return exitStatus;
}

}  // namespace Cli
