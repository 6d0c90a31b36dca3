// The command `vynpt`: what all of its subcommands share.
#pragma once

namespace CLI {
class App;
}

namespace Cli {

// Exit statuses of `vynpt trace`. Of the other subcommands replay uses those of replay/Replay.h,
// the others `answered` and `badUsage`.
enum ExitStatus : int {
    answered = 0,           // every request was answered, dropped and refused included
    expectationFailed = 1,  // --expect did not hold for every frame
    badUsage = 2,           // bad usage or bad input
    noAnswer = 4,           // some request had no answer in time
};

// Each adds its subcommand to the command. When the subcommand was parsed, its callback runs it and
// leaves the exit status in `exitStatus`.
void addTraceCommand(CLI::App& app, int& exitStatus);
void addInterfacesCommand(CLI::App& app, int& exitStatus);
void addReplayCommand(CLI::App& app, int& exitStatus);
void addRinglogCommand(CLI::App& app, int& exitStatus);

// The whole command; returns its exit status. Bad usage and bad input become one line on standard
// error and status 2.
int runCommand(int argc, char const* const* argv);

}  // namespace Cli
