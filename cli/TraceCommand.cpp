// `vynpt trace`: where the switch sends packets.
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <charconv>
#include <chrono>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <system_error>

#include "agent/ForwardingAgent.h"
#include "cli/Capture.h"
#include "cli/CaptureWriter.h"
#include "cli/ChipNames.h"
#include "cli/Command.h"
#include "cli/HexBytes.h"
#include "cli/HumanReport.h"
#include "cli/Interrupt.h"
#include "cli/JsonReport.h"
#include "cli/Output.h"
#include "cli/PacketOptions.h"
#include "cli/Progress.h"
#include "cli/SwitchDefaults.h"
#include "cli/TraceRun.h"
#include "cli/UsageError.h"
#include "scenario/RecordingFile.h"
#include "switchfile/SwitchFile.h"

namespace Cli {
namespace {

using SwitchFile::SwitchModel;

constexpr char const* footer =
    "A packet is a frame of a capture, or --hex, or fields; a field that is not given gets a\n"
    "default that suits the switch and is listed in the answer.\n\n"
    "Exit status:\n"
    "  0  every request was answered, dropped and refused included\n"
    "  1  --expect did not hold for every frame\n"
    "  2  bad usage or bad input\n"
    "  4  some request had no answer in time\n"
    "and of several that apply the first of 2, 4, 1, 0.\n\n"
    "Examples:\n"
    "  vynpt trace capture.pcap --switch leaf.json --in Ethernet1\n"
    "  vynpt trace capture.pcapng --switch leaf.json --in Ethernet1 --frame 7 --explain\n"
    "  tcpdump -U -w - -i eth0 | vynpt trace - --switch leaf.json --in Ethernet1 --json\n"
    "  vynpt trace --switch leaf.json --in Ethernet1 --ip-dst 10.1.20.11 --proto tcp --dport 443\n"
    "  vynpt trace --switch leaf.json --in Ethernet43 --vlan 20 --arp-op request \\\n"
    "      --arp-target-ip 10.1.20.1\n"
    "  vynpt trace --switch leaf.json --in Ethernet1 --ip-dst 10.1.20.11 --expect Ethernet17\n";

struct Arguments {
    std::string capture;
    std::string switchFile;
    std::string in;
    std::optional<std::uint64_t> frame;
    std::optional<std::string> hex;
    PacketOptions fields;
    bool json = false;
    bool explain = false;
    std::optional<std::string> write;
    std::optional<std::string> record;
    std::optional<std::string> expect;
    std::string timeout = "2";
};

Plexa::IntfId ingressOf(std::string const& name) {
    auto const intf = Plexa::IntfId::fromName(name);
    if (!intf || intf->empty()) {
        throw UsageError("--in: expected the name of an interface, got \"" + name + "\"");
    }
    return *intf;
}

std::chrono::nanoseconds timeoutOf(std::string const& text) {
    constexpr double mostSeconds = 1e9;
    double value = 0;
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    bool const whole = error == std::errc() && end == text.data() + text.size();
    if (!whole || !(value >= 0 && value <= mostSeconds)) {
        throw UsageError("--timeout: expected seconds from 0 to 1000000000, got \"" + text + "\"");
    }
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
        std::chrono::duration<double>(value));
}

// A packet must be given in one way only.
void checkSource(Arguments const& arguments) {
    int const ways = int{!arguments.capture.empty()} + int{arguments.hex.has_value()} +
                     int{arguments.fields.given()};
    if (ways != 1) {
        throw UsageError(
            "expected the packet in one way, as a capture, with --hex or by fields such as "
            "--ip-dst, got " +
            std::string(ways == 0 ? "none" : "several"));
    }
    if (arguments.capture == "-" && arguments.switchFile == "-") {
        throw UsageError("--switch: expected a file, because standard input is the capture, got -");
    }
    if (arguments.frame && arguments.capture.empty()) {
        throw UsageError("--frame: expected a capture beside it, got none");
    }
    if (arguments.frame && *arguments.frame == 0) {
        throw UsageError("--frame: expected a number from 1, got 0");
    }
}

Packet packetByFields(PacketOptions const& options, SwitchModel const& model,
                      Plexa::IntfId const& ingress) {
    auto fields = options.fields();
    auto const etherType = options.etherType();
    auto defaults = fillFromSwitch(fields, etherType, options.untagged(), model, ingress);
    Packet packet = packetOfFields(fields, etherType);
    packet.defaults = std::move(defaults);
    return packet;
}

// Whether two names are those of one file. A device such as /dev/null may serve twice.
bool isOneFile(std::filesystem::path const& one, std::filesystem::path const& other) {
    std::error_code none;
    if (std::filesystem::exists(one, none) || std::filesystem::exists(other, none)) {
        return std::filesystem::equivalent(one, other, none) &&
               std::filesystem::is_regular_file(one, none);
    }
    return std::filesystem::weakly_canonical(std::filesystem::absolute(one)) ==
           std::filesystem::weakly_canonical(std::filesystem::absolute(other));
}

void checkOutput(char const* option, std::optional<std::string> const& path,
                 Arguments const& arguments) {
    if (!path) {
        return;
    }
    if (path->empty() || *path == "-") {
        throw UsageError(std::string(option) + ": expected a file, got \"" + *path + "\"");
    }
    if (arguments.switchFile != "-" && isOneFile(*path, arguments.switchFile)) {
        throw UsageError(std::string(option) +
                         ": expected another file than the switch file, got " + *path);
    }
}

// Output files must not replace input files, nor one another.
void checkOutputs(Arguments const& arguments) {
    checkOutput("--write", arguments.write, arguments);
    checkOutput("--record", arguments.record, arguments);
    if (arguments.write && arguments.record && isOneFile(*arguments.write, *arguments.record)) {
        throw UsageError("--record: expected another file than that of --write, got " +
                         *arguments.record);
    }
}

std::unique_ptr<FrameSource> openSource(Arguments const& arguments, SwitchModel const& model,
                                        Plexa::IntfId const& ingress) {
    if (!arguments.capture.empty()) {
        auto capture = std::make_unique<Capture>(arguments.capture, arguments.frame);
        if (arguments.write && capture->isSameFile(*arguments.write)) {
            throw UsageError("--write: expected another file than the capture, got " +
                             *arguments.write);
        }
        if (arguments.record && capture->isSameFile(*arguments.record)) {
            throw UsageError("--record: expected another file than the capture, got " +
                             *arguments.record);
        }
        return capture;
    }
    return std::make_unique<OnePacket>(arguments.hex
                                           ? packetOfFrame(parseHexBytes(*arguments.hex, "--hex"))
                                           : packetByFields(arguments.fields, model, ingress));
}

// Prints the reports to standard output, with a progress bar meanwhile, and writes frames to a
// file.
class Printer {
  public:
    Printer(Arguments const& arguments, FrameSource const& source)
        : json_(arguments.json), source_(source), colour_(output_.wantsColour()) {
        if (arguments.write) {
            writer_.emplace(*arguments.write);
        }
        if (::isatty(STDERR_FILENO) == 1) {
            progress_.emplace(std::cerr, Progress::Clock::now());
        }
    }

    void print(FrameReport const& report) {
        if (progress_ && output_.isTerminal()) {
            progress_->clear();
        }
        bool const isFirst = frames_++ == 0;
        output_.write(json_ ? jsonText(report)
                            : (isFirst ? "" : "\n") + humanText(report, colour_));
        if (writer_ && report.answer.injection) {
            writer_->write(report.answer.injection->frame.view(), report.packet.time);
        }
    }

    void pause() {
        output_.flush();
        if (progress_) {
            progress_->update(frames_, source_.progress(), Progress::Clock::now());
        }
    }

    void end() {
        progress_.reset();
        output_.flush();
        if (writer_) {
            writer_->flush();
        }
    }

  private:
    bool const json_;
    FrameSource const& source_;
    Output output_{STDOUT_FILENO};
    bool const colour_;
    std::optional<CaptureWriter> writer_;
    std::optional<Progress> progress_;
    std::uint64_t frames_ = 0;
};

ExitStatus statusOf(TraceRun::Result const& result) {
    if (!result.badInput.empty()) {
        return badUsage;
    }
    if (result.unanswered) {
        return noAnswer;
    }
    return result.unexpected ? expectationFailed : answered;
}

TraceRun::Result traceAll(Arguments const& arguments, TraceRunOptions options,
                          SwitchModel const& model, FrameSource& source,
                          Scenario::RecordingFile* recording) {
    // The road hears statements of the chip's thread, too, so it must outlive the agent.
    std::optional<Road> road;
    ChipNames const names(model);
    if (arguments.explain) {
        options.road = &road.emplace();
        options.names = &names;
    }
    Agent::ForwardingAgent agent(model, {.recording = recording});
    Interrupt const interrupt(Vanta::Ptr<Orb::TaskSchedulerRoot>(&agent.loop()));
    Printer printer(arguments, source);
    TraceRun run(
        agent, source, std::move(options),
        [&](FrameReport const& report) { printer.print(report); }, [&] { printer.pause(); });
    auto result = run.run([] { return Interrupt::signal() != 0; });
    printer.end();
    return result;
}

int trace(Arguments const& arguments) {
    checkSource(arguments);
    checkOutputs(arguments);
    TraceRunOptions options;
    options.ingress = ingressOf(arguments.in);
    options.timeout = timeoutOf(arguments.timeout);
    if (arguments.expect) {
        options.expectation = Expectation::parse(*arguments.expect);
    }
    auto const model = SwitchFile::readSwitchFile(arguments.switchFile);
    auto const source = openSource(arguments, model, options.ingress);
    std::optional<Scenario::RecordingFile> recording;
    if (arguments.record) {
        recording.emplace(*arguments.record);
    }
    auto const result =
        traceAll(arguments, std::move(options), model, *source, recording ? &*recording : nullptr);
    std::string const lost = recording ? recording->error() : "";
    if (!lost.empty()) {
        std::cerr << "vynpt: " << lost << '\n';
    }
    // If the same Ctrl-C cut the capture short, that is no bad input.
    Interrupt::raiseAgain();
    if (!result.badInput.empty()) {
        std::cerr << "vynpt: " << result.badInput << '\n';
    }
    return lost.empty() ? statusOf(result) : badUsage;
}

void addOptions(CLI::App& command, Arguments& arguments) {
    command
        .add_option("CAPTURE", arguments.capture,
                    "Frames: a pcap or pcapng file (- for standard input)")
        ->type_name("");
    command.add_option("--switch", arguments.switchFile, "The switch file")
        ->type_name("FILE")
        ->required();
    command.add_option("--in", arguments.in, "The interface that the packets come in on")
        ->type_name("INTF")
        ->required();
    command.add_option("--frame", arguments.frame, "Only this frame of the capture, from 1")
        ->type_name("N");
    command.add_option("--hex", arguments.hex, "One frame in hexadecimal digits")
        ->type_name("BYTES");
    command.add_flag("--json", arguments.json, "Answer in JSON, one object a frame");
    command.add_flag("--explain", arguments.explain,
                     "Show the chip's steps and the request's road, with times");
    command.add_option("--write", arguments.write, "Write the frames as injected to a pcap file")
        ->type_name("FILE");
    command
        .add_option("--record", arguments.record,
                    "Record the run as a scenario, which `vynpt replay` plays again")
        ->type_name("FILE");
    command
        .add_option("--expect", arguments.expect,
                    "Exactly these physical interfaces, joined by commas, for every frame")
        ->type_name("INTF,...");
    command.add_option("--timeout", arguments.timeout, "Seconds that an answer may take")
        ->type_name("SECONDS")
        ->default_str("2");
    arguments.fields.addTo(command);
}

}  // namespace

void addTraceCommand(CLI::App& app, int& exitStatus) {
    auto const arguments = std::make_shared<Arguments>();
    auto* const command = app.add_subcommand("trace", "Where would the switch send these packets?");
    addOptions(*command, *arguments);
    command->footer(footer);
    command->callback([arguments, &exitStatus] { exitStatus = trace(*arguments); });
}

}  // namespace Cli
