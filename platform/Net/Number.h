// Whole numbers as parts of the texts that this folder reads. Threads: any.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "VynExport.h"

namespace Net {

// A number from 0 to `most`, written in digits of that base alone, leading zeros allowed; nothing
// for any other text.
VYN_EXPORT std::optional<std::uint32_t> numberOfDigits(std::string_view text, std::uint32_t most,
                                                       int base = 10) noexcept;

// The same, decimal or, after "0x", hexadecimal.
VYN_EXPORT std::optional<std::uint32_t> numberFromText(std::string_view text,
                                                       std::uint32_t most) noexcept;

}  // namespace Net
