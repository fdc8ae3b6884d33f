// The text path for the layers above: strings drawn and measured in the
// selected font with the current settings (height, angle, justification,
// alphabets, code set, mix mode).
//
// Positions are plot coordinates without the origin shift, y growing
// downward, already turned by the page origin (call qqyflpi first when the
// caller's y comes from the interface).  The position is the upper left
// corner of the string's first character before justification.
#pragma once

#include "text/text_block.h"

struct TextBlock;

// Draws a string as messag does, justification included; x and y both 999
// continue at the pen.
void qqmessag(TextBlock *b, const char *text, int x, int y) noexcept;
// Draws a string at a given height and angle, then restores both.
void qqmesshgt(TextBlock *b, const char *text, int x, int y, int height, int angle) noexcept;
// The string's length in plot coordinates at the current settings, as
// nlmess gives it: 0 for a blank or empty string.
int qqtxtlen(TextBlock *b, const char *text) noexcept;
// The same at a given height (the current height comes back).
int qqtxtlenh(TextBlock *b, const char *text, int height) noexcept;
// The extent of a string above its baseline and below it for frames: nh
// (the height, more with exponents and indices in mix mode) and nu (0
// unless a formula mode gives a depth).
void qqtxtext(TextBlock *b, const char *text, int *nh, int *nu) noexcept;
// Draws one internal character code at the pen (the 999 position of the
// next string continues behind it).
void qqtxtchar(TextBlock *b, int code) noexcept;

// Strokes one character of a hardware font that its driver refused, with
// the STANDARD glyph of the selected stroke font at the character's place,
// height and angle (the device layer calls it through a hook).
struct QQHwChar;
void qqtxthwstroke(TextBlock *b, const QQHwChar *c) noexcept;

// Hooks that higher layers set on a block (null when not set): user
// coordinates of the axis system to plot coordinates for rlmess (returns 0
// when it cannot), and the symbol n of the plot layer for the instruction
// alphabet.
void qqtxthooks(TextBlock *b,
                int (*userpos)(TextBlock *b, double x, double y, double *px, double *py),
                void (*symbol)(TextBlock *b, int n, double x, double y, double size,
                               int angle)) noexcept;
