// `vynpt ringlog`: the messages of a trace ring, of a living process or a dead one.
#include <poll.h>

#include <CLI/CLI.hpp>
#include <array>
#include <ctime>
#include <iostream>
#include <optional>

#include "Trace/RingReader.h"
#include "cli/Command.h"
#include "cli/UsageError.h"

namespace Cli {
namespace {

struct Arguments {
    std::string file;
    bool follow = false;
    std::optional<std::string> handle;
    std::optional<std::string> levels;
};

// "2026-11-21 15:04:05.123456789", in local time.
std::string timeText(std::int64_t nanoseconds) {
    std::time_t const seconds = nanoseconds / 1'000'000'000;
    std::tm parts{};
    localtime_r(&seconds, &parts);
    std::array<char, 64> text;
    std::size_t const size = std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", &parts);
    std::string const fraction = std::to_string(nanoseconds % 1'000'000'000);
    return std::string(text.data(), size) + "." + std::string(9 - fraction.size(), '0') + fraction;
}

void print(Trace::RingMessage const& message) {
    if (message.lostBefore != 0) {
        std::cout << "... " << message.lostBefore << " lost ...\n";
    }
    std::cout << timeText(message.nanoseconds) << ' ' << message.handle << ' ' << message.level
              << ' ' << message.text << '\n';
}

void printAll(Trace::RingReader& reader, Trace::RingReader::Unfinished unfinished) {
    while (auto const message = reader.next(unfinished)) {
        print(*message);
    }
    std::cout.flush();
}

void run(Arguments const& arguments) {
    Trace::RingReader reader(arguments.file);
    reader.handleIs(arguments.handle);
    if (arguments.levels) {
        auto const levels = Trace::LevelSet::parse(*arguments.levels);
        if (!levels) {
            throw UsageError("--level: expected levels such as 1, 0-4 or 1,7, got " +
                             *arguments.levels);
        }
        reader.levelsIs(*levels);
    }
    if (!arguments.follow) {
        printAll(reader, Trace::RingReader::Unfinished::passOver);
        return;
    }
    // Nothing announces a record, so the reader looks ten times a second.
    constexpr int pauseMilliseconds = 100;
    while (std::cout.good()) {
        printAll(reader, Trace::RingReader::Unfinished::wait);
        ::poll(nullptr, 0, pauseMilliseconds);
        reader.poll();
    }
}

}  // namespace

void addRinglogCommand(CLI::App& app, int& exitStatus) {
    auto const arguments = std::make_shared<Arguments>();
    auto* const command = app.add_subcommand(
        "ringlog", "Print the messages of a trace ring, of a living process or a dead one");
    command->add_option("FILE", arguments->file, "The ring, as VYNPT_RING named it")
        ->type_name("")
        ->required();
    command->add_flag("--follow", arguments->follow, "Go on with what is written meanwhile");
    command->add_option("--handle", arguments->handle, "Only messages of this trace handle")
        ->type_name("HANDLE");
    command->add_option("--level", arguments->levels, "Only messages of these levels, as 1 or 0-4")
        ->type_name("LEVELS");
    command->footer(
        "Examples:\n"
        "  VYNPT_RING=/tmp/agent.ring vynpt trace capture.pcap --switch leaf.json --in Ethernet1\n"
        "  vynpt ringlog /tmp/agent.ring --handle VynPtPktGenSm --level 0-4\n"
        "  vynpt ringlog /tmp/agent.ring --follow\n");
    command->callback([arguments, &exitStatus] {
        run(*arguments);
        exitStatus = answered;
    });
}

}  // namespace Cli
