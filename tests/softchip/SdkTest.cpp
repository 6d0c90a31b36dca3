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

}  // namespace
}  // namespace SoftChip
