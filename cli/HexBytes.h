// Bytes as people write them: hexadecimal digits, two a byte.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace Cli {

// The bytes of `text`. Blanks, line ends, ':', '-' and '.' may separate bytes; upper and lower case
// mean the same. An empty text gives no bytes.
// Errors: UsageError "`what`: character N: expected ..., got ...", also for half a byte.
std::vector<std::uint8_t> parseHexBytes(std::string_view text, std::string_view what);

}  // namespace Cli
