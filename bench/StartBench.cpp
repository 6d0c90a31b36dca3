// From a switch file to an agent that is ready to trace; and the command as a whole process.
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "agent/ForwardingAgent.h"
#include "bench/Cost.h"
#include "switchfile/SwitchFile.h"

namespace Bench {
namespace {

using Clock = std::chrono::steady_clock;

constexpr unsigned trunks = 40;
constexpr unsigned vlansOfATrunk = 100;
constexpr unsigned physicalPorts = 456;  // as many as the chip has
constexpr unsigned vlanInterfaces = 44;  // 500 interfaces in all
constexpr unsigned routes = 100'000;
constexpr unsigned gateways = 8;

std::string portText(unsigned port) {
    return std::to_string(port / 128) + "/" + std::to_string(port % 128);
}

// 40 trunks with 100 VLANs each, routed ports for the rest, and routes to their neighbours.
std::string switchFile() {
    nlohmann::json file;
    file["routerMac"] = "02:1c:73:00:00:01";
    file["vlans"]["100-199"] = nlohmann::json::object();
    auto& interfaces = file["interfaces"];
    for (unsigned port = 0; port < physicalPorts; ++port) {
        auto& intf = interfaces["Ethernet" + std::to_string(port + 1)];
        intf["port"] = portText(port);
        if (port < trunks) {
            intf["trunk"] = "100-199";
        } else {
            intf["addresses"] = {"172." + std::to_string(16 + port / 128) + "." +
                                 std::to_string(port % 128) + ".0/31"};
        }
    }
    for (unsigned i = 0; i < vlanInterfaces; ++i) {
        interfaces["Vlan" + std::to_string(100 + i)]["addresses"] = {"192.168." +
                                                                     std::to_string(i) + ".1/24"};
    }
    auto& table = file["routes"]["default"];
    for (unsigned route = 0; route < routes; ++route) {
        auto const prefix = std::to_string(20 + route / 65536) + "." +
                            std::to_string(route / 256 % 256) + "." + std::to_string(route % 256) +
                            ".0/24";
        table[prefix] = "172.16." + std::to_string(100 + route % gateways) + ".1";
    }
    return file.dump(4);
}

std::string const& switchFileText() {
    static std::string const text = switchFile();
    return text;
}

// Times `work`, but not the end of what it returns.
template <class Work>
void timeWithoutEnd(benchmark::State& state, Work const& work) {
    for (auto _ : state) {
        auto const begin = Clock::now();
        auto const made = work();
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - begin).count());
        benchmark::DoNotOptimize(&made);
    }
}

void start(benchmark::State& state) {
    auto const& text = switchFileText();
    timeWithoutEnd(state, [&] {
        auto agent = std::make_unique<Agent::ForwardingAgent>(
            SwitchFile::parseSwitchFile(text, "bench.json"));
        agent->chip().drain();
        return agent;
    });
    state.counters["MB"] = static_cast<double>(text.size()) / 1e6;
}
BENCHMARK(start)->Name("start/agent")->UseManualTime()->Unit(benchmark::kMillisecond);

void startFloor(benchmark::State& state) {
    auto const& text = switchFileText();
    timeWithoutEnd(state, [&] { return nlohmann::json::parse(text); });
}
BENCHMARK(startFloor)->Name("floor/start/agent")->UseManualTime()->Unit(benchmark::kMillisecond);

// ---- The command

// Runs a command without output and returns its exit status.
int runCommand(std::vector<std::string> words) {
    std::vector<char*> arguments;
    for (auto& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    int const failed =
        ::posix_spawnp(&child, arguments[0], &actions, nullptr, arguments.data(), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    int status = -1;
    if (failed == 0) {
        ::waitpid(child, &status, 0);
    }
    return status;
}

void command(benchmark::State& state, std::vector<std::string> const& words) {
    if (runCommand(words) != 0) {
        state.SkipWithError((words[0] + " is not there or fails").c_str());
        return;
    }
    for (auto _ : state) {
        runCommand(words);
    }
}

std::vector<std::string> const traceOneFrame{VYN_COMMAND,
                                             "trace",
                                             "--switch",
                                             VYN_SOURCE_DIR "/examples/leaf.json",
                                             "--in",
                                             "Ethernet1",
                                             VYN_SOURCE_DIR "/examples/captures/l2-unicast.pcap"};

BENCHMARK_CAPTURE(command, vynpt, traceOneFrame)
    ->Name("start/command")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(command, nothing, std::vector<std::string>{"true"})
    ->Name("floor/start/command")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace Bench
