#include "cli/Command.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <vector>

#include "ScratchFile.h"

namespace Cli {
namespace {

struct Ran {
    int status = 0;
    std::string out;
    std::string err;
};

Ran ran(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "vynpt");
    std::vector<char const*> pointers;
    for (auto const& argument : arguments) {
        pointers.push_back(argument.c_str());
    }
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    Ran result;
    result.status = runCommand(static_cast<int>(pointers.size()), pointers.data());
    result.out = testing::internal::GetCapturedStdout();
    result.err = testing::internal::GetCapturedStderr();
    return result;
}

Ran traced(std::vector<std::string> const& arguments, std::string const& in = "Ethernet1") {
    std::vector<std::string> all{"trace", "--switch", example("leaf.json"), "--in", in};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return ran(all);
}

std::string capture(std::string const& name) {
    return example("captures/" + name);
}

// ---- Usage

void expectUsageError(Ran const& result, std::string const& part) {
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_TRUE(result.err.starts_with("vynpt: ")) << result.err;
    EXPECT_EQ(result.err.find('\n'), result.err.size() - 1) << result.err;
    EXPECT_NE(result.err.find(part), std::string::npos) << result.err;
}

TEST(Command, BadUsageIsOneLineAndStatus2) {
    expectUsageError(ran({}), "subcommand");
    expectUsageError(ran({"trade"}), "subcommand");
    expectUsageError(ran({"trace"}), "--switch");
    expectUsageError(traced({"--frob"}), "--frob");
    expectUsageError(traced({capture("ecmp.pcap"), "more"}), "more");
}

TEST(Command, HelpHasExamplesForEverySubcommand) {
    for (char const* name : {"trace", "interfaces", "replay", "ringlog"}) {
        auto const help = ran({name, "--help"});
        EXPECT_EQ(help.status, 0);
        EXPECT_EQ(help.err, "");
        EXPECT_NE(help.out.find("Example"), std::string::npos) << name;
        EXPECT_NE(help.out.find(std::string("vynpt ") + name), std::string::npos) << name;
    }
    EXPECT_EQ(ran({"--help"}).status, 0);
}

TEST(Command, APacketIsGivenInOneWay) {
    expectUsageError(traced({}), "got none");
    expectUsageError(traced({capture("ecmp.pcap"), "--hex", "00"}), "got several");
    expectUsageError(traced({capture("ecmp.pcap"), "--ttl", "1"}), "got several");
    expectUsageError(traced({"--hex", "00", "--ttl", "1"}), "got several");
    expectUsageError(traced({"--hex", "00", "--frame", "1"}), "--frame");
    expectUsageError(traced({capture("ecmp.pcap"), "--frame", "0"}), "--frame");
}

TEST(Command, StandardInputIsOneThing) {
    expectUsageError(ran({"trace", "-", "--switch", "-", "--in", "Ethernet1"}), "--switch");
}

TEST(Command, WrongValuesAreBadUsage) {
    expectUsageError(traced({"--hex", "0"}), "--hex");
    expectUsageError(traced({"--ttl", "x"}), "--ttl");
    expectUsageError(traced({capture("ecmp.pcap"), "--timeout", "-1"}), "--timeout");
    expectUsageError(traced({capture("ecmp.pcap"), "--timeout", "soon"}), "--timeout");
    expectUsageError(traced({capture("ecmp.pcap"), "--expect", "Eth1"}), "--expect");
    expectUsageError(traced({capture("ecmp.pcap")}, "Eth1"), "--in");
    expectUsageError(traced({capture("ecmp.pcap")}, ""), "--in");
}

TEST(Command, TheCaptureIsNotOverwritten) {
    ScratchFile const copy("copy.pcap", contentOf(capture("ecmp.pcap")));
    expectUsageError(traced({copy.path(), "--write", copy.path()}), "--write");
    expectUsageError(traced({copy.path(), "--record", copy.path()}), "--record");
    EXPECT_EQ(copy.content(), contentOf(capture("ecmp.pcap")));
}

// ---- Bad input

TEST(Command, ABadSwitchFileIsOneLineThatNamesThePlace) {
    ScratchFile const broken("broken.json", "{\"interfaces\": {]}");
    expectUsageError(ran({"trace", "--hex", "00", "--in", "Ethernet1", "--switch", broken.path()}),
                     broken.path() + ":1:17: ");
    ScratchFile const unknown("unknown.json", R"({"interfaces": {}, "interphases": {}})");
    expectUsageError(ran({"interfaces", "--switch", unknown.path()}), "/interphases: ");
    expectUsageError(ran({"interfaces", "--switch", "/nowhere.json"}), "/nowhere.json");
}

TEST(Command, ATornCaptureIsAnsweredUpToThePlace) {
    ScratchFile const torn("torn.pcap", contentOf(capture("ecmp.pcap")).substr(0, 250));
    auto const result = traced({torn.path()});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(result.err.starts_with("vynpt: " + torn.path() + ": frame 3: ")) << result.err;
    EXPECT_NE(result.out.find("Frame 2, "), std::string::npos);
    EXPECT_EQ(result.out.find("Frame 3, "), std::string::npos);
    EXPECT_EQ(result.out.back(), '\n');
}

// ---- Answers

TEST(Command, AnsweredIsStatus0DroppedAndRefusedToo) {
    EXPECT_EQ(traced({capture("l2-unicast.pcap")}).status, 0);
    EXPECT_EQ(traced({capture("mpls.pcap")}).status, 0);
    EXPECT_EQ(traced({capture("hairpin.pcap")}).status, 0);
    EXPECT_EQ(traced({capture("hairpin.pcap")}, "Ethernet99").status, 0);
    EXPECT_EQ(traced({"--hex", ""}).status, 0);
}

TEST(Command, AnExpectationDecidesTheStatus) {
    EXPECT_EQ(traced({capture("l2-unicast.pcap"), "--expect", "Ethernet3"}).status, 0);
    auto const result = traced({capture("l2-unicast.pcap"), "--expect", "Ethernet4"});
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.out.find("missing Ethernet4; unexpected Ethernet3"), std::string::npos);
}

TEST(Command, NoAnswerComesBeforeAnExpectationAndBehindBadInput) {
    auto const late = traced({capture("ecmp.pcap"), "--timeout", "0", "--expect", "Ethernet4"});
    EXPECT_EQ(late.status, 4);
    EXPECT_NE(late.out.find("no answer"), std::string::npos);
    ScratchFile const torn("torn.pcap", contentOf(capture("ecmp.pcap")).substr(0, 250));
    EXPECT_EQ(traced({torn.path(), "--timeout", "0"}).status, 2);
}

TEST(Command, OneFrameCanBeChosen) {
    auto const result = traced({capture("ecmp.pcap"), "--frame", "3"});
    EXPECT_TRUE(result.out.starts_with("Frame 3, "));
    EXPECT_EQ(result.out.find("Frame ", 1), std::string::npos);
}

TEST(Command, WhatIsWrittenDoesNotTakeThePlaceOfTheSwitchFile) {
    ScratchFile const copy("switch.json", contentOf(example("leaf.json")));
    for (auto const* option : {"--write", "--record"}) {
        expectUsageError(ran({"trace", capture("ecmp.pcap"), "--switch", copy.path(), "--in",
                              "Ethernet1", option, copy.path()}),
                         std::string(option) + ": expected another file than the switch file");
    }
    EXPECT_EQ(copy.content(), contentOf(example("leaf.json")));
}

TEST(Command, ARecordingAndWhatWasInjectedAreTwoFiles) {
    ScratchFile const there("there");
    ScratchPath const missing("missing");
    for (auto const& path : {there.path(), missing.string()}) {
        expectUsageError(traced({capture("ecmp.pcap"), "--write", path, "--record", path}),
                         "--record: expected another file than that of --write");
    }
    EXPECT_FALSE(std::filesystem::exists(missing.string()));
}

TEST(Command, ARecordingAndWhatWasInjectedMayBothGoNowhere) {
    EXPECT_EQ(
        traced({capture("ecmp.pcap"), "--write", "/dev/null", "--record", "/dev/null"}).status, 0);
}

TEST(Command, WhatIsWrittenNeedsAFile) {
    for (auto const* option : {"--write", "--record"}) {
        for (auto const* name : {"-", ""}) {
            expectUsageError(traced({capture("ecmp.pcap"), option, name}),
                             std::string(option) + ": expected a file");
        }
    }
}

TEST(Command, JsonIsOneLineAFrame) {
    auto const result = traced({capture("ecmp.pcap"), "--json"});
    EXPECT_EQ(std::ranges::count(result.out, '\n'), 8);
    EXPECT_TRUE(result.out.starts_with("{\"frame\":1,"));
}

TEST(Command, FieldsGetDefaultsThatTheAnswerLists) {
    auto const result = traced({"--ip-dst", "10.1.20.11"});
    EXPECT_NE(result.out.find("by default: eth-dst 02:1c:73:00:00:01"), std::string::npos);
    EXPECT_NE(result.out.find("Ethernet17  Vlan20"), std::string::npos) << result.out;
}

TEST(Command, WhatWasInjectedIsWritten) {
    ScratchFile const written("written.pcap");
    EXPECT_EQ(traced({capture("mixed.pcapng"), "--write", written.path()}).status, 0);
    auto const again = traced({written.path(), "--json"});
    auto const first = traced({capture("mixed.pcapng"), "--json"});
    auto const injected = [](std::string const& lines) {
        std::size_t count = 0;
        for (auto at = lines.find("\"injected\":true"); at != std::string::npos;
             at = lines.find("\"injected\":true", at + 1)) {
            ++count;
        }
        return count;
    };
    EXPECT_EQ(injected(first.out), injected(again.out));
    EXPECT_EQ(static_cast<std::size_t>(std::ranges::count(again.out, '\n')), injected(first.out));
}

TEST(Command, ARunIsRecordedAndReplayed) {
    ScratchFile const recorded("recorded.jsonl");
    EXPECT_EQ(traced({capture("ecmp.pcap"), "--record", recorded.path()}).status, 0);
    auto const replayed = ran({"replay", recorded.path()});
    EXPECT_EQ(replayed.status, 0);
    EXPECT_EQ(replayed.err, "");
    std::istringstream lines(replayed.out);
    std::size_t results = 0;
    for (std::string line; std::getline(lines, line);) {
        results += line.starts_with(R"({"result":"valid","client":"vynpt",)") ? 1 : 0;
    }
    EXPECT_EQ(results, 8U);
}

TEST(Command, ARecordingThatCannotBeWrittenIsStatus2) {
    expectUsageError(traced({capture("ecmp.pcap"), "--record", "/no/such/directory/run.jsonl"}),
                     "/no/such/directory/run.jsonl");
}

TEST(Command, InterfacesArePrintedOneALine) {
    auto const all = ran({"interfaces", "--switch", example("small.json")});
    EXPECT_EQ(all.out, "Ethernet1\nEthernet2\nEthernet3\nEthernet4\nEthernet65\n");
    auto const ingress = ran({"interfaces", "--switch", example("border.json"), "--ingress"});
    EXPECT_EQ(ingress.out.find("Lag"), std::string::npos);
    EXPECT_EQ(ingress.out.find("Vlan"), std::string::npos);
}

}  // namespace
}  // namespace Cli
