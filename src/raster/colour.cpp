// The colour model: colour tables, named colours, fore- and background.
#include "core/glbblk.h"
#include "core/subsystems.h"

namespace {

void colour_first(glbblk *b) { b->clr.vltkind = 1; }

}  // namespace

extern const Subsystem kxsub_colour = {"colour", colour_first, nullptr, nullptr, nullptr, nullptr};
