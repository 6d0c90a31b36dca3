#include "replay/Dump.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>

#include "tests/SourceDir.h"
#include "tests/replay/Replayed.h"

namespace Replay {
namespace {

std::string const folder = sourcePath("tests/replay/dump/");

std::string fileText(std::string const& path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file) << path;
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

// What is printed after the observations. The number of a descriptor is the system's choice.
std::string dumpOf(std::string const& scenario) {
    auto const ran = replayText(scenario, true);
    EXPECT_EQ(0, ran.status) << ran.err;
    static std::regex const descriptor("(socketPairWriteDesc\":)[0-9]+");
    return std::regex_replace(ran.out.substr(ran.out.find("{\"roots\"")), descriptor, "$1NUMBER");
}

// The lines of a dump by the type of their object.
std::map<std::string, std::string> byType(std::string const& dump) {
    static std::regex const type("\"type\":\"([^\"]*)\"");
    std::map<std::string, std::string> types;
    std::istringstream lines(dump);
    for (std::string line; std::getline(lines, line);) {
        std::smatch match;
        std::string const name = std::regex_search(line, match, type) ? match[1].str() : "roots";
        types[name] += line + '\n';
    }
    return types;
}

std::map<std::string, std::string> const& printed() {
    static auto const types = byType(dumpOf(fileText(folder + "scenario.jsonl")));
    return types;
}

std::set<std::string> expectedTypes() {
    std::set<std::string> types;
    for (auto const& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() == ".out") {
            types.insert(entry.path().stem());
        }
    }
    return types;
}

class DumpOfType : public testing::TestWithParam<std::string> {};

TEST_P(DumpOfType, IsAsExpected) {
    auto const found = printed().find(GetParam());
    ASSERT_NE(printed().end(), found) << "no object of this type was printed";
    EXPECT_EQ(fileText(folder + GetParam() + ".out"), found->second);
}

INSTANTIATE_TEST_SUITE_P(Dump, DumpOfType, testing::ValuesIn(expectedTypes()),
                         [](auto const& type) { return type.param; });

TEST(Dump, PrintsNoTypeThatIsNotExpected) {
    auto const expected = expectedTypes();
    for (auto const& [type, lines] : printed()) {
        EXPECT_TRUE(expected.contains(type)) << type << ".out would be\n" << lines;
    }
}

TEST(Dump, PrintsEveryObjectOnce) {
    auto const dump = dumpOf(fileText(folder + "scenario.jsonl"));
    std::istringstream lines(dump);
    std::string line;
    std::getline(lines, line);
    for (std::size_t number = 1; std::getline(lines, line); ++number) {
        EXPECT_EQ(0U, line.find("{\"object\":" + std::to_string(number) + ",\"type\":")) << line;
    }
}

TEST(Dump, ShowsThatThereIsNoTracer) {
    EXPECT_NE(std::string::npos, dumpOf("").find("\"tracer\":null"));
}

TEST(Dump, IsPrintedOnlyWhenEverythingWasRun) {
    auto const ran = replayText("{\"do\":\"turn\"}\nx\n", true);
    EXPECT_EQ(2, ran.status);
    EXPECT_EQ("{\"event\":1}\n", ran.out);
}

TEST(Dump, IsNotPrintedUnasked) {
    EXPECT_EQ(std::string::npos, replayText("").out.find("roots"));
}

}  // namespace
}  // namespace Replay
