#include "cli/ChipWords.h"

#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <sstream>
#include <string>

#include "tests/SourceDir.h"

namespace Cli {
namespace {

using SoftChip::Reason;
using SoftChip::Step;

// Every step and every reason, by its number.
template <class Visit>
void forEachStep(Visit&& visit) {
    for (unsigned step = 1; step <= SoftChip::stepCount; ++step) {
        visit(static_cast<Step>(step));
    }
}
template <class Visit>
void forEachReason(Visit&& visit) {
    for (unsigned reason = 0; reason < SoftChip::reasonCount; ++reason) {
        visit(static_cast<Reason>(reason));
    }
}

std::string document() {
    std::ifstream const file(sourcePath("docs/explanations.md"));
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

template <class Key>
std::string row(Key key) {
    return "| `" + std::string(SoftChip::code(key)) + "` | " + std::string(words(key)) + " |";
}

TEST(ChipWords, EveryReasonHasItsOwn) {
    std::set<std::string_view> all;
    forEachReason([&](Reason reason) { all.insert(words(reason)); });
    EXPECT_EQ(all.size(), SoftChip::reasonCount);
}

TEST(ChipWords, EveryStepHasItsOwn) {
    std::set<std::string_view> all;
    forEachStep([&](Step step) { all.insert(words(step)); });
    EXPECT_EQ(all.size(), SoftChip::stepCount);
}

TEST(ChipWords, StandInTheDocumentBesideTheCodes) {
    std::string const text = document();
    forEachStep([&](Step step) { EXPECT_NE(text.find(row(step)), text.npos) << row(step); });
    forEachReason(
        [&](Reason reason) { EXPECT_NE(text.find(row(reason)), text.npos) << row(reason); });
}

}  // namespace
}  // namespace Cli
