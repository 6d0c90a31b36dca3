#include "replay/ClassName.h"

#include <gtest/gtest.h>

#include <vector>

#include "Kel/Error.h"

namespace Replay {
namespace {

TEST(ClassName, IsWithoutItsNamespaces) {
    EXPECT_EQ("RangeError", classNameOf(typeid(Kel::RangeError)));
    EXPECT_EQ("int", classNameOf(typeid(int)));
}

TEST(ClassName, IsWithoutItsArguments) {
    EXPECT_EQ("vector", classNameOf(typeid(std::vector<Kel::RangeError>)));
}

}  // namespace
}  // namespace Replay
