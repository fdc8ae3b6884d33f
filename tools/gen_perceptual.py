#!/usr/bin/env python3
"""Write src/colour/perceptual.cpp from the CC0 ramps that matplotlib ships.

matplotlib is a tool of this script only; the library carries the rounded
table.  Run from the repository root: python tools/gen_perceptual.py
"""
import numpy as np
from matplotlib import _cm_listed as L

NAMES = [("viridis", "_viridis_data"), ("magma", "_magma_data"),
         ("inferno", "_inferno_data"), ("plasma", "_plasma_data")]

HEAD = '''// Perceptually uniform colour tables: four ramps of 256 colours whose
// lightness rises evenly, so that equal steps of a value look like equal
// steps of colour, also to readers with a colour vision deficiency and in
// grey print.
//
// Source: the tabulated ramps of Nathaniel J. Smith, Stefan van der Walt
// and Eric Firing (2015), as distributed with matplotlib 3.x in
// _cm_listed.py; released under CC0 1.0 (public domain dedication).  The
// values were rounded to 8 bits per channel once, by tools/gen_perceptual.py.
#include "colour/perceptual.h"

namespace {
'''

TAIL = '''}  // namespace

const int *qqperceptual(int which) noexcept {
    switch (which) {
        case 0: return k_viridis;
        case 1: return k_magma;
        case 2: return k_inferno;
        case 3: return k_plasma;
        default: return nullptr;
    }
}'''


def main():
    out = [HEAD]
    for nm, attr in NAMES:
        v = np.clip(np.floor(np.array(getattr(L, attr)) * 255 + 0.5), 0, 255).astype(int)
        out.append("const int k_%s[256] = {" % nm)
        line = "   "
        for r, g, b in v:
            s = " 0x%02X%02X%02X," % (r, g, b)
            if len(line) + len(s) > 100:
                out.append(line)
                line = "   "
            line += s
        out.append(line)
        out.append("};")
    out.append(TAIL)
    with open("src/colour/perceptual.cpp", "w") as f:
        f.write("\n".join(out) + "\n")


if __name__ == "__main__":
    main()
