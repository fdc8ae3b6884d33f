// The warning reporters.
//
// Every reporter raises the session's warning count first and prints one
// line, cut at 132 characters, when output is on (outu not 0) and warnings
// are on (erron).  The line goes to the error file when one is in use,
// else to the console.  Formats:
//
//   qqwarn  " <<<< Warning n: text in name!   ( value)"
//   qqwarc  " <<<< Warning n: text in name!   (word)"
//   qqwar0  " <<<< Warning n: text in name!"
//   qqwarm  the same with the caller's text; with n < 0 a protocol line
//           " <<<< text in name!" that is neither counted nor switched off
//           by errmod("WARN", "OFF").
//
// The text of warning n comes from the table for 1 to 58, from qqwtxt's
// text for numbers above 100.
#pragma once

#include "core/core_block.h"

struct CoreBlock;

void qqwarn(CoreBlock *b, int n, int value) noexcept;
// qqwarn for a refused double: the value shows as its nearest integer, a
// NaN or an infinity as 0.
void qqwarnd(CoreBlock *b, int n, double value) noexcept;
void qqwarc(CoreBlock *b, int n, const char *text) noexcept;
void qqwar0(CoreBlock *b, int n) noexcept;
void qqwarm(CoreBlock *b, int n, const char *text) noexcept;
void qqwtxt(CoreBlock *b, const char *text) noexcept;
// A warning above 100 whose text the caller gives: qqwtxt then qqwar0.
void qqwar1(CoreBlock *b, int n, const char *text) noexcept;
// Opens the error file when warnings must go to one.
void qqerrf(CoreBlock *b) noexcept;
// Closes the error file and sends warnings to the console again.
void qqerrc(CoreBlock *b) noexcept;
// The table's text of warning n (1 to 58; anything else one blank).
const char *qqwartext(int n) noexcept;

// Checks user coordinates against the axis limits: NaN values are counted
// with nancrv on, points out of range are counted and reported.
void qqchkd(CoreBlock *b, const double *x, const double *y, int n) noexcept;
void qqchk3(CoreBlock *b, const double *x, const double *y, const double *z, int n) noexcept;
