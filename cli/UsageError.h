// The error of the command's user interface.
#pragma once

#include <stdexcept>

namespace Cli {

// Bad usage or bad input: one line that says where it is and what was expected.
class UsageError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

}  // namespace Cli
