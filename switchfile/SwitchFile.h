// The switch file: a JSON text that says everything about one switch, and the model it becomes.
//
// Reading gives a whole model or throws one InputError that says where the error is and what was
// expected. Besides wrong types and ranges the reader refuses contradictions.
//
// The format is described in docs/switch-file.md and docs/switch.schema.json.
#pragma once

#include <string>
#include <string_view>

#include "switchfile/InputError.h"
#include "switchfile/SwitchModel.h"

namespace SwitchFile {

// The model of a switch file's text; `fileName` is for messages only.
// Errors: InputError for the first thing that is wrong.
SwitchModel parseSwitchFile(std::string_view text, std::string const& fileName);

// The same of a file, "-" being standard input. Errors: as above, and InputError if it is
// unreadable.
SwitchModel readSwitchFile(std::string const& path);

}  // namespace SwitchFile
