// Numbers as text for the file formats and the protocol.
//
// These behave like printf's "%W.Pf" and "%W.Pe" in the C locale, whatever
// locale the calling program has set: a decimal comma must never reach a
// metafile.  Each writes at most size - 1 characters plus a terminator and
// returns the length written.
#pragma once

int qqfmtf(char *dst, int size, double v, int width, int prec) noexcept;
int qqfmte(char *dst, int size, double v, int width, int prec) noexcept;
// Reads a decimal number in the C locale's form (strtod without the
// locale); end points behind it, or at text when there is none.
double qqatof(const char *text, char **end) noexcept;
// Left-justified "%-Ws" of a decimal integer.
int qqfmti(char *dst, int size, long long v, int width) noexcept;
