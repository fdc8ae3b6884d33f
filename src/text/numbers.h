// Numbers as text: the digit text, the exponent forms and the decorations
// of numode, shared by number, nlnumb and the label formatters of the axes,
// bars, pies and contours.
//
// Every text here is built into a caller's buffer of the given size
// (terminator included) and never runs past it.
#pragma once

#include "text/number_state.h"
#include "text/text_block.h"

struct TextBlock;

// The plain digit text of x with ndig decimals (-1 no point, 0 the point
// only); a minus before an all-zero text is dropped.  Returns the length.
int qqdigtxt(double x, int ndig, char *out, int size) noexcept;

// The exponent form of x: kind 1 EXP ("*10" raised e), 2 FEXP ("E" e),
// 4 XEXP ("{D}10" raised e).  raise and back are the instruction
// characters that raise the exponent and return to the base line.
int qqexptxt(double x, int ndig, int kind, char raise, char back, char *out, int size) noexcept;

// The digits that show a value exactly enough (automatic digits): -1 for
// none, else the count of decimals.
int qqautodig(double v) noexcept;

// Applies the decimal, thousands and sign characters of numode to a plain
// digit text in place (size bounds the result).
int qqnumode(const TextBlock *b, char *text, int size) noexcept;

// The text that number draws for x: digit text or exponent form by numfmt,
// with the numode decorations.  Returns the length, or -1 for a bad ndig.
int qqnumtxt(const TextBlock *b, double x, int ndig, char *out, int size) noexcept;

// number and nlnumb without their guards, for the labels of plots: the
// width of x as number writes it, and x written with its upper left
// corner at a plot position (no page flip, no justification).
int qqnumlen(TextBlock *b, double x, int ndig) noexcept;
void qqnumat(TextBlock *b, double x, int ndig, int nx, int ny) noexcept;

// The instruction characters that raise text and bring it back to the base
// line, as the text settings hold them.
char qqraisech(const TextBlock *b) noexcept;
char qqbackch(const TextBlock *b) noexcept;
