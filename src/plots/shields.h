// Internal entries of the shields for the plots that register regions
// automatically (bars, pies, legends, symbols).
#pragma once

#include "plots/plot_block.h"

struct PlotBlock;

// Kinds of the automatic registrations.
enum { QQ_SHL_OWN = 0, QQ_SHL_MESS = 1, QQ_SHL_SYMB = 2, QQ_SHL_BARS = 3, QQ_SHL_PIE = 4, QQ_SHL_LEGE = 5 };

// Adds a record of a type with values in plot coordinates (origin shift
// not yet added, y already through the page origin); the kind is the
// current kind.  Returns the identifier, or 0 when nothing was stored.
int qqshladd(PlotBlock *b, int type, const double *v, int nv) noexcept;
// Whether automatic shielding of a kind (1 to 5) is on.
int qqshlauto(PlotBlock *b, int kind) noexcept;
// Adds a record under an automatic kind: the current kind for the call.
int qqshlautoadd(PlotBlock *b, int kind, int type, const double *v, int nv) noexcept;
// Removes the record with an identifier if it is of the kind given.
void qqshldelid(PlotBlock *b, int id, int kind) noexcept;
