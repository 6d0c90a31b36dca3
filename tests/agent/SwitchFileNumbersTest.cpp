// Every number of a switch file, in turn, becomes each number at which a range ends, or one beyond.
#include <gtest/gtest.h>

#include <array>
#include <regex>

#include "agent/DeriveState.h"
#include "agent/DeriveTables.h"
#include "switchfile/JsonDocument.h"
#include "switchfile/SwitchFile.h"
#include "tests/SourceDir.h"

namespace Agent {
namespace {

constexpr std::array edges{
    "0",   "1",    "2",    "7",    "8",    "9",    "15",    "16",    "30",         "31",
    "32",  "33",   "63",   "64",   "65",   "71",   "72",    "126",   "127",        "128",
    "129", "224",  "239",  "254",  "255",  "256",  "455",   "456",   "511",        "512",
    "999", "4093", "4094", "4095", "4096", "9999", "65535", "65536", "2147483648", "4294967295"};

// Whether the text is taken; a refusal has to name the place.
bool isTaken(std::string const& text) {
    try {
        SwitchFile::SwitchModel const model = SwitchFile::parseSwitchFile(text, "switch.json");
        static_cast<void>(deriveTables(model));
        static_cast<void>(deriveForwardingState(model));
        return true;
    } catch (SwitchFile::InputError const& error) {
        EXPECT_TRUE(std::string_view(error.what()).starts_with("switch.json:")) << error.what();
        return false;
    }
}

TEST(SwitchFileNumbers, AreTakenOrRefusedWithAPlaceWhateverTheyAre) {
    std::string const whole = SwitchFile::readWholeFile(sourcePath("examples/border.json"));
    std::size_t taken = 0;
    std::size_t refused = 0;
    std::regex const number("[0-9]+");
    for (std::sregex_iterator at(whole.begin(), whole.end(), number), end; at != end; ++at) {
        for (auto const* const edge : edges) {
            std::string text = whole;
            text.replace(static_cast<std::size_t>(at->position()), at->str().size(), edge);
            ++(isTaken(text) ? taken : refused);
        }
    }
    EXPECT_GT(taken, 1000U);
    EXPECT_GT(refused, 1000U);
}

}  // namespace
}  // namespace Agent
