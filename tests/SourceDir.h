// Where this project's sources are, for tests that read an example or a page.
#pragma once

#include <string>
#include <string_view>

// The path of a file, named as it is from the project's root: sourcePath("examples/leaf.json").
std::string sourcePath(std::string_view name);
