// A range of characters that a parser takes from.
#pragma once

namespace Vanta {

// From `begin` up to, not including, `end`. A parser that succeeds moves `begin` past what it took.
struct CharRange {
    char const* begin;
    char const* end;
};

}  // namespace Vanta
