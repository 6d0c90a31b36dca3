#include "softchip/Sdk.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace SoftChip {
namespace {

TEST(Sdk, HasATextOfItsOwnForEveryStatus) {
    std::set<std::string> texts;
    for (auto status = 0; status <= static_cast<int>(Status::unknownMessage); ++status) {
        texts.insert(text(static_cast<Status>(status)));
    }
    EXPECT_EQ(texts.size(), static_cast<std::size_t>(Status::unknownMessage) + 1);
}

TEST(Sdk, HasANameOfItsOwnForEveryCall) {
    std::set<std::string> texts;
    for (std::size_t call = 0; call < callCount; ++call) {
        texts.insert(text(static_cast<Call>(call)));
    }
    EXPECT_EQ(texts.size(), callCount);
}

}  // namespace
}  // namespace SoftChip
