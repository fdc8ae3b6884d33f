#!/usr/bin/env python3
"""Every interpolation of polcrv, one axis system each, on one page.

    python3 examples/curve_modes.py [DEVICE] [FILE]

Row by row: LINE, STEP, STAI; STEM, BARS, FBAR; SPLI, PSPL and CURV, the
data points shown as symbols beside the curve.  The LINE panel also shows a
NaN in the data (with nancrv on), which breaks the line.
"""
import math
import sys

import kolvex as k

MODES = ["LINE", "STEP", "STAI", "STEM", "BARS", "FBAR", "SPLI", "PSPL", "CURV"]


def draw(device="PNG", name="curve_modes.png"):
    x = [0.5 + i for i in range(10)]
    y = [math.sin(0.7 * v) * 2 + 0.3 * v for v in x]
    k.metafl(device)
    k.setfil(name)
    k.filmod("DELE")
    k.scrmod("REVERS")
    k.kolini()
    k.unit(0)
    k.complx()
    k.nancrv("ON")
    for i, mode in enumerate(MODES):
        col, row = i % 3, i // 3
        k.axspos(200 + col * 950, 620 + row * 680)
        k.axslen(800, 480)
        k.height(24)
        k.labdig(-1, "XY")
        k.graf(0.0, 10.0, 0.0, 2.0, -2.0, 6.0, -2.0, 2.0)
        k.height(36)
        k.color("BLUE")
        k.polcrv(mode)
        if mode == "PSPL":  # a closed loop through the points
            a = [2 * math.pi * j / 8 for j in range(9)]
            px = [5 + 3.5 * math.cos(t) for t in a]
            py = [2 + 3 * math.sin(t) for t in a]
        elif mode == "LINE":
            px, py = x, y[:4] + [math.nan] + y[5:]
        else:
            px, py = x, y
        k.curve(px, py, len(px))
        k.color("RED")
        k.polcrv("LINE")
        k.incmrk(-1)
        k.marker(21)
        k.hsymbl(18)
        k.curve(px, py, len(px))
        k.incmrk(0)
        k.color("FORE")
        k.messag(mode, 200 + col * 950 + 20, 620 + row * 680 - 470)
        k.endgrf()
    k.kolfin()


if __name__ == "__main__":
    draw(*sys.argv[1:3])
