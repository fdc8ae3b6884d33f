// Shading patterns: the pattern code and what follows from it.
#pragma once

#include "plots/plot_block.h"

struct PlotBlock;

enum { QQ_SOLID_PATTERN = 16 };

// Selects pattern number n (0 or more) as shdpat does, without checks:
// below 18 from the table, otherwise read as a code angle × 1000 + type ×
// 100 + density × 10 + cross.  The stored number is n itself.
void qqshdpat(PlotBlock *b, int n) noexcept;
// The pattern number (to save and restore round a drawing).
int qqgetpat(const PlotBlock *b) noexcept;
