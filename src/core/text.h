// Text helpers shared by every subsystem.  All work on plain byte strings
// with a terminating zero; a length counts characters without it.
#pragma once

#include <cstddef>

// Upper-cases the ASCII letters a to z in place, nothing else.
void qqupc(char *text) noexcept;
// Copies until the source ends or n characters are copied, then always
// terminates; dest must hold n + 1 bytes.  Returns the count copied.
int qqscpy(char *dest, const char *source, int n) noexcept;
// Appends until dest holds n characters, terminates; returns the new length.
int qqscat(char *dest, const char *source, int n) noexcept;
// An integer in decimal, padded in front to width (zeros when zero is 1),
// never beyond size - 1 characters.  Returns the length.
int qqicha(int value, char *dest, int size, int width, int zero) noexcept;
// A double with fixed decimals; decimals 0 ends in a point, a negative
// count gives an integer.  Returns the length.
int qqfcha(double value, int decimals, char *dest, int size, int width) noexcept;
// Append a number with one blank in front when dest is not empty.
int qqiapp(char *dest, int value, int n) noexcept;
int qqfapp(char *dest, double value, int decimals, int n) noexcept;
// The signed integer of the k-th group of non-blank characters (k from 1).
int qqntok(const char *text, int k) noexcept;

// Rounding of the library: add 0.5 and truncate toward zero; a result
// outside the 32-bit range is INT_MIN.
int qqround(double v) noexcept;
// round(v) of the formulas: half away from zero.
int qqnint(double v) noexcept;
