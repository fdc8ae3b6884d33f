// The keyword matcher and the range test of integer arguments.
#pragma once

#include "core/core_block.h"

struct CoreBlock;

// Matches the first four characters of word, case-blind and blank padded,
// against a list of count keywords of four characters joined by '+'
// ("OFF +ON  ").  The blanks that pad a short keyword match any character:
// "off", "OFF" and "Offset" all give OFF, while "OF" does not.  Returns 1
// to count, or 0 after warning 2 with the word.
int qqkey(CoreBlock *b, const char *list, int count, const char *word) noexcept;
// A "value, option" setting: the option must be the one keyword given
// (warning 2 otherwise), the value one of the list.  Returns the value's
// position or 0.
int qqkeyopt(CoreBlock *b, const char *option, const char *copt, const char *list, int count,
             const char *cval) noexcept;
// The same without a warning: 0 when nothing matches.
int qqkeyq(const char *list, int count, const char *word) noexcept;
// Returns 1 after warning 2 when value < low, or when low <= high and
// value > high; else 0.  A high below low means no upper limit.
int qqchki(CoreBlock *b, int value, int low, int high) noexcept;
// The test of a rectangle by corner and size: returns 1 after warning 2
// with the smallest offending value when a corner is below 0 or a size
// below 1; else 0.
int qqchkrect(CoreBlock *b, int nx, int ny, int nw, int nh) noexcept;
// The keyword in a canonical form: first four characters, upper case,
// blank padded, terminated (out must hold 5 bytes).
void qqkeyword(const char *word, char *out) noexcept;
