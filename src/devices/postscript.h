// What the PostScript driver offers to the layers above it.
#pragma once

// Escapes n bytes for a PostScript string literal, without the enclosing
// parentheses: "(", ")" and "\" get a backslash, bytes outside printable
// ASCII become "\ooo" (three octal digits), so that the file stays 7-bit
// and no byte can end the string early.  Writes at most size - 1 bytes and
// a terminator; returns the length, or -1 when out is too small (out then
// holds an empty string).
int qqpsesc(const char *text, int n, char *out, int size) noexcept;
