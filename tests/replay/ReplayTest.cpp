#include "replay/Replay.h"

#include <gtest/gtest.h>

#include <fstream>
#include <streambuf>
#include <vector>

#include "Vanta/Node.h"
#include "replay/Printer.h"
#include "tests/SourceDir.h"
#include "tests/replay/Replayed.h"

namespace Replay {
namespace {

std::string fileText(std::string const& path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file) << path;
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

// The last line of what was printed.
std::string lastLine(std::string const& out) {
    std::size_t const end = out.size() - 1;
    std::size_t const start = out.rfind('\n', end - 1);
    return out.substr(start == std::string::npos ? 0 : start + 1);
}

TEST(Replay, PrintsARequestFromArrivalToWithdrawalToTheByte) {
    std::string const folder = sourcePath("examples/scenarios/");
    auto const ran = replayText(fileText(folder + "first.jsonl"));
    EXPECT_EQ(0, ran.status);
    EXPECT_EQ(fileText(folder + "first.out"), ran.out);
    EXPECT_EQ("", ran.err);
}

TEST(Replay, OfNothingPrintsNothing) {
    auto const ran = replayText("");
    EXPECT_EQ(0, ran.status);
    EXPECT_EQ("", ran.out + ran.err);
}

TEST(Replay, CountsTheLinesThatItSkips) {
    auto const ran = replayLines({"# a comment", "", R"({"do":"turn"})", "#", R"({"do":"turn"})"});
    EXPECT_EQ("{\"event\":3}\n{\"event\":5}\n", ran.out);
}

TEST(Replay, SkipsACommentWhateverIsInIt) {
    EXPECT_EQ(0, replayText("# \xff \xed\xa0\x80 {\n").status);
}

TEST(Replay, CarriesOutALastLineWithoutAnEnd) {
    EXPECT_EQ("{\"event\":1}\n", replayText(R"({"do":"turn"})").out);
}

TEST(Replay, TakesACarriageReturnAtALinesEnd) {
    EXPECT_EQ("{\"event\":1}\n", replayText("{\"do\":\"turn\"}\r\n").out);
}

TEST(Replay, RefusesALineOfBlanks) {
    for (auto const* line : {" ", "\t", "\r", " # no comment"}) {
        auto const ran = replayText(std::string(line) + '\n');
        EXPECT_EQ(badInput, ran.status) << line;
        EXPECT_EQ("", ran.out);
    }
}

TEST(Replay, PrintsWhatCameBeforeARefusedLineAndNamesTheLine) {
    auto const ran = replayLines({R"({"do":"turn"})", "", R"({"do":"trun"})", R"({"do":"turn"})"});
    EXPECT_EQ(badInput, ran.status);
    EXPECT_EQ("{\"event\":1}\n", ran.out);
    EXPECT_EQ("test.jsonl: line 3: there is no event \"trun\"\n", ran.err);
}

TEST(Replay, SaysWhatIsWrongInOneLine) {
    auto const ran = replayLines({R"({"do":"turn","a\nb":1})"});
    EXPECT_EQ("test.jsonl: line 1: unknown member \"a\\nb\"\n", ran.err);
}

// Each of these makes no sense after the lines before it.
struct Senseless {
    std::vector<std::string> before;
    std::string line;
};

Senseless const senseless[] = {
    {{R"({"do":"start"})"}, R"({"do":"start"})"},
    {{}, R"({"do":"stop"})"},
    {{R"({"do":"start"})", R"({"do":"stop"})"}, R"({"do":"stop"})"},
    {{R"({"do":"port","intf":"Ethernet1","pipe":0,"port":0})"},
     R"({"do":"portDel","intf":"Ethernet2"})"},
    {{R"({"do":"portToIntfId","port":1,"intf":"Ethernet1"})"},
     R"({"do":"portToIntfIdDel","port":2})"},
    {{R"({"do":"lagToPort","lag":"Lag1"})"}, R"({"do":"lagToPortDel","lag":"Lag2"})"},
    {{R"({"do":"portToLag","intf":"Ethernet1","lag":"Lag1"})"},
     R"({"do":"portToLagDel","intf":"Lag1"})"},
    {{R"({"do":"vlan","id":10,"intf":[]})"}, R"({"do":"vlanDel","id":11})"},
    {{R"({"do":"cpuPort","intf":"Ethernet1"})"}, R"({"do":"cpuPortDel","intf":"Cpu"})"},
    {{R"({"do":"clientStatus","client":"noc"})"}, R"({"do":"clientConfigDel","client":"noc"})"},
    {{R"({"do":"clientConfig","client":"noc"})"}, R"({"do":"clientStatusDel","client":"noc"})"},
    {{}, R"({"do":"request","client":"noc","req":1,"intf":""})"},
    {{R"({"do":"clientConfig","client":"noc","entity":"none"})"},
     R"({"do":"request","client":"noc","req":1,"intf":""})"},
    {{R"({"do":"clientConfig","client":"noc","entity":"other"})"},
     R"({"do":"request","client":"noc","req":1,"intf":""})"},
    {{R"({"do":"clientConfig","client":"noc"})"},
     R"({"do":"requestSet","client":"noc","req":1,"attr":"gre","value":true})"},
    {{}, R"({"do":"requestSet","client":"noc","req":1,"attr":"gre","value":true})"},
    {{R"({"do":"clientConfig","client":"noc"})"}, R"({"do":"requestDel","client":"noc","req":1})"},
    {{}, R"({"do":"requestDel","client":"noc","req":1})"},
    {{R"({"do":"clientConfig","client":"noc"})"}, R"({"do":"result","client":"noc","req":1})"},
    {{R"({"do":"clientStatus","client":"noc","entity":"none"})"},
     R"({"do":"result","client":"noc","req":1})"},
    {{R"({"do":"clientStatus","client":"noc","entity":"other"})"},
     R"({"do":"result","client":"noc","req":1})"},
    {{R"({"do":"clientStatus","client":"noc"})", R"({"do":"result","client":"noc","req":1})"},
     R"({"do":"result","client":"noc","req":1})"},
    {{R"({"do":"phase0","intf":"Ethernet1"})"}, R"({"do":"phase0Del","intf":""})"},
};

TEST(Replay, RefusesEventsThatMakeNoSenseNow) {
    for (Senseless const& wrong : senseless) {
        std::string text;
        for (std::string const& line : wrong.before) {
            text += line + '\n';
        }
        auto const ran = replayText(text + wrong.line + '\n');
        std::size_t const number = wrong.before.size() + 1;
        EXPECT_EQ(badInput, ran.status) << wrong.line;
        EXPECT_NE(std::string::npos, ran.err.find("line " + std::to_string(number) + ": "))
            << ran.err;
        EXPECT_EQ("", linesWith(ran.out, "{\"event\":" + std::to_string(number) + "}"));
    }
}

TEST(Replay, TakesEverythingAwayThatIsThere) {
    auto const ran = replayLines({
        R"({"do":"port","intf":"","pipe":0,"port":0})",
        R"({"do":"portDel","intf":""})",
        R"({"do":"portToIntfId","port":1,"intf":""})",
        R"({"do":"portToIntfIdDel","port":1})",
        R"({"do":"lagToPort","lag":""})",
        R"({"do":"lagToPortDel","lag":""})",
        R"({"do":"portToLag","intf":"","lag":"Ethernet1"})",
        R"({"do":"portToLagDel","intf":""})",
        R"({"do":"vlan","id":10,"intf":[]})",
        R"({"do":"vlanDel","id":10})",
        R"({"do":"cpuPort","intf":""})",
        R"({"do":"cpuPortDel","intf":""})",
        R"({"do":"clientConfig","client":"","entity":"none"})",
        R"({"do":"clientConfigDel","client":""})",
        R"({"do":"clientStatus","client":"","entity":"other"})",
        R"({"do":"clientStatusDel","client":""})",
        R"({"do":"phase0","intf":""})",
        R"({"do":"phase0Del","intf":""})",
        R"({"do":"clientConfig","client":"noc"})",
        R"({"do":"request","client":"noc","req":4294967295,"intf":""})",
        R"({"do":"requestSet","client":"noc","req":4294967295,"attr":"raw","value":""})",
        R"({"do":"requestDel","client":"noc","req":4294967295})",
    });
    EXPECT_EQ(0, ran.status) << ran.err;
    EXPECT_EQ(lastLine(ran.out), "{\"event\":22}\n");
}

TEST(Replay, TakesTurnsAndTheChipsEventsWithoutATracer) {
    auto const ran = replayLines(
        {R"({"do":"turn","times":3})", R"({"do":"counter","pipe":0,"value":1})",
         R"({"do":"sdkReturn","call":"genOnePkt","rc":1})", R"({"do":"digest","entries":[{}]})",
         R"({"do":"digestField","field":"egrMd_routed","size":1})",
         R"({"do":"phase0","intf":"Ethernet1"})", R"({"do":"yieldAfter","checks":1})"});
    EXPECT_EQ(0, ran.status);
    EXPECT_EQ(lastLine(ran.out), "{\"event\":7}\n");
}

TEST(Replay, PrintsTheEnginesStateOnlyWhereItDiffersFromTheOnePrintedLast) {
    auto const ran = replayLines({R"({"do":"start"})", R"({"do":"turn"})", R"({"do":"stop"})",
                                  R"({"do":"start"})", R"({"do":"turn"})"});
    EXPECT_EQ("{\"engine\":\"idle\"}\n", linesWith(ran.out, "\"engine\""));
}

TEST(Replay, EndsWithoutShowingWhatItTakesDown) {
    auto const ran = replayLines({R"({"do":"start"})"});
    EXPECT_EQ("{\"engine\":\"idle\"}\n", lastLine(ran.out));
    EXPECT_EQ("", linesWith(ran.out, "deregister"));
}

TEST(Replay, LeavesNothingBehind) {
    auto const nodes = Vanta::Node::liveCount();
    replayText(fileText(sourcePath("examples/scenarios/first.jsonl")));
    replayLines({R"({"do":"start"})", R"({"do":"clientConfig","client":"noc"})", "x"});
    EXPECT_EQ(nodes, Vanta::Node::liveCount());
}

TEST(Replay, MovesToTheDeviceOfEachStart) {
    auto const ran = replayLines({R"({"do":"start","device":7,"session":4294967295})",
                                  R"({"do":"digest","entries":[]})", R"({"do":"stop"})",
                                  R"({"do":"start","device":255})"});
    EXPECT_EQ(
        joined(
            {R"({"sdk":"pipe_mgr_lrn_digest_notification_register","args":{"session":4294967295,"device":7,"handle":77},"rc":0})",
             R"({"sdk":"pipe_mgr_flow_lrn_notify_ack","args":{"session":4294967295,"handle":77},"rc":0})",
             R"({"sdk":"pipe_mgr_lrn_digest_notification_deregister","args":{"session":4294967295,"device":7,"handle":77},"rc":0})",
             R"({"sdk":"pipe_mgr_lrn_digest_notification_register","args":{"session":1,"device":255,"handle":77},"rc":0})"}),
        linesWith(ran.out, "\"sdk\""));
}

TEST(Replay, PrintsTextsEscaped) {
    auto const ran = replayLines(
        {R"({"do":"start"})", R"({"do":"clientConfig","client":"a\"\\\u0001\u001F\t/%s\u00e9"})"});
    EXPECT_EQ(
        "{\"trace\":\"VynPtSm\",\"level\":7,\"text\":\"handleClient:client "
        "a\\\"\\\\\\u0001\\u001f\\t/%s\xc3\xa9\"}\n",
        lastLine(ran.out));
}

// Hands out one line at a time, and notes what had been printed when it was asked for the next.
class Conversation : public std::streambuf {
  public:
    Conversation(std::vector<std::string> lines, std::ostringstream const& out)
        : lines_(std::move(lines)), out_(out) {}

    std::vector<std::string> const& seen() const { return seen_; }

  protected:
    int_type underflow() override {
        seen_.push_back(out_.str());
        if (next_ == lines_.size()) {
            return traits_type::eof();
        }
        std::string& line = lines_[next_++];
        setg(line.data(), line.data(), line.data() + line.size());
        return traits_type::to_int_type(line.front());
    }

  private:
    std::vector<std::string> lines_;
    std::ostringstream const& out_;
    std::vector<std::string> seen_;
    std::size_t next_ = 0;
};

TEST(Replay, AnswersALineBeforeItReadsTheNext) {
    std::ostringstream out;
    std::ostringstream err;
    Conversation conversation({"{\"do\":\"turn\"}\n", "{\"do\":\"turn\"}\n"}, out);
    std::istream in(&conversation);
    EXPECT_EQ(0, run(in, out, err));
    EXPECT_EQ((std::vector<std::string>{"", "{\"event\":1}\n", "{\"event\":1}\n{\"event\":2}\n"}),
              conversation.seen());
}

TEST(Replay, SaysSoWhenItsOutputIsNotTaken) {
    std::istringstream in("{\"do\":\"turn\"}\n{\"do\":\"turn\"}\n");
    std::ostream out(nullptr);
    std::ostringstream err;
    EXPECT_EQ(cannotWrite, run(in, out, err));
    EXPECT_NE("", err.str());
}

TEST(Replay, OfAFileThatIsNotThereIsBadInput) {
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_EQ(badInput, runFile(sourcePath("examples/scenarios/none.jsonl"), out, err));
    EXPECT_NE(std::string::npos, err.str().find("none.jsonl"));
    EXPECT_EQ(badInput, runFile(sourcePath("examples"), out, err));
    EXPECT_EQ("", out.str());
}

// The end of the process: the run's output goes to standard error, where it can be looked at.
void runToStandardError(std::string const& text) {
    std::istringstream in(text);
    std::ostringstream err;
    run(in, std::cerr, err);
}

TEST(ReplayDeathTest, AFailedAssertionIsTheLastThingPrinted) {
    EXPECT_EXIT(
        runToStandardError(joined(
            {R"({"do":"sdkReturn","call":"pipe_mgr_lrn_digest_notification_register","rc":-3})",
             R"({"do":"start"})", R"({"do":"turn"})"})),
        testing::ExitedWithCode(fatalStatus),
        "digest_notification_register\",.*\"rc\":-3\\}\n"
        ".*failed to initialize digest, error: -3\"\\}\n"
        "\\{\"fatal\":\"assert\",\"text\":\"false\"\\}\n$");
}

TEST(ReplayDeathTest, AnExceptionInADispatcherIsTheLastThingPrinted) {
    EXPECT_EXIT(
        runToStandardError(joined({R"({"do":"start"})", R"({"do":"clientConfig","client":"noc"})",
                                   R"({"do":"clientStatus","client":"noc"})",
                                   R"({"do":"clientStatus","client":"noc"})", R"({"do":"turn"})"})),
        testing::ExitedWithCode(fatalStatus),
        "\\{\"fatal\":\"ReinstantiationError\",\"text\":\"[^\n]*\"\\}\n$");
}

}  // namespace
}  // namespace Replay
