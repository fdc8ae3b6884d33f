#!/usr/bin/env python3
"""The ten legend positions of one axis system.

    python3 examples/legends.py [DEVICE] [FILE]

Each legend's title names its position number: 1 to 4 are the corners of
the page, 5 to 8 the corners of the axis system, 9 and 10 the left and
right edges of the page at the height of the axis system's middle.  The
entries repeat the two curves and the symbols.  The shaded band is drawn
first: a shaded area is recorded under its own counter, whose first record
the first curve then takes over, so the band stays out of the legend.
"""
import math
import sys

import kolvex as k


def draw(device="PNG", name="legends.png"):
    x = [i * 0.25 for i in range(41)]
    k.metafl(device)
    k.setfil(name)
    k.filmod("DELE")
    k.scrmod("REVERS")
    k.kolini()
    k.unit(0)
    k.complx()
    k.height(30)
    k.axspos(700, 1550)
    k.axslen(1570, 1000)
    k.graf(0.0, 10.0, 0.0, 2.0, -1.5, 1.5, -1.5, 0.5)
    k.shdpat(16)
    k.color("ORANGE")
    k.shdcrv(x, [0.5 * math.sin(v) - 0.2 for v in x], len(x), x, [0.5 * math.sin(v) + 0.2 for v in x], len(x))
    k.color("FORE")
    k.chncrv("COLO")
    k.curve(x, [math.sin(v) for v in x], len(x))
    k.curve(x, [math.cos(v) for v in x], len(x))
    k.incmrk(-1)
    k.marker(16)
    k.curve(x[::4], [-1.2] * len(x[::4]), len(x[::4]))
    k.height(22)
    k.legini("", 3, 12)
    k.leglin("", "sin x", 1)
    k.leglin("", "cos x", 2)
    k.leglin("", "points", 3)
    k.frame(2)
    for pos in range(1, 11):
        k.legtit(f"Position {pos}")
        k.legend("", pos)
    k.endgrf()
    k.kolfin()


if __name__ == "__main__":
    draw(*sys.argv[1:3])
