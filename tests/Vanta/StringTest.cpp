#include "Vanta/String.h"

#include <gtest/gtest.h>

#include <sstream>

#include "Grist/Grist.h"

namespace {

using Vanta::String;

TEST(String, SharesItsTextWithItsCopies) {
    String const name("noc");
    auto const blocks = Grist::liveBlocks();
    String const copy = name;
    EXPECT_EQ(Grist::liveBlocks(), blocks);
    EXPECT_EQ(copy.view().data(), name.view().data());
}

TEST(String, ComparesByItsText) {
    EXPECT_EQ(String("noc"), String("noc"));
    EXPECT_FALSE(String("noc") == String("nod"));
    EXPECT_LT(String("a"), String("b"));
    EXPECT_TRUE(String("noc") == std::string_view("noc"));
    EXPECT_FALSE(String("noc") == std::string_view("nod"));
}

TEST(String, CountsItsCharacters) {
    EXPECT_EQ(String("noc").size(), 3U);
    EXPECT_EQ(String().size(), 0U);
}

TEST(String, PrintsItsText) {
    std::ostringstream out;
    out << String("noc") << String();
    EXPECT_EQ(out.str(), "noc");
}

TEST(String, HoldsNoBlockWhenEmpty) {
    auto const blocks = Grist::liveBlocks();
    String const empty("");
    EXPECT_EQ(Grist::liveBlocks(), blocks);
    EXPECT_EQ(empty, String());
    EXPECT_TRUE(empty.empty());
}

TEST(String, HashesEqualTextsEqually) {
    EXPECT_EQ(String("a name of some length").hash(), String("a name of some length").hash());
    EXPECT_NE(String("a").hash(), String("b").hash());
    EXPECT_EQ(std::hash<String>()(String("a")), String("a").hash());
}

TEST(String, GivesItsBlockBack) {
    auto const blocks = Grist::liveBlocks();
    { String const name("noc"); }
    EXPECT_EQ(Grist::liveBlocks(), blocks);
}

}  // namespace
