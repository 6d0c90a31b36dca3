// The one error of bad input.
#pragma once

#include <stdexcept>

namespace SwitchFile {

// what() is one line that says where it is and what was expected there,
// "file:line:column: ..." for syntax and "file: /json/pointer: ..." for content.
class InputError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

}  // namespace SwitchFile
