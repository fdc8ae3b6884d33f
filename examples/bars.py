#!/usr/bin/env python3
"""Bar graphs: six panels on one page.

    python3 examples/bars.py [DEVICE] [FILE]

Upper row: three data sets grouped side by side with their values above
the bars and a legend; the same sets stacked, each bar labelled with its
own share in its middle; horizontal bars.  Lower row: bars with a 3-D look
and labels inside; candlesticks of a made-up price; bars, their labels and
a title shielded, so that the dense grid drawn after them leaves them free.
A second picture (draw_3d) holds bars in a 3-D axis system.
"""
import sys

import kolvex as k

X = [1, 2, 3, 4, 5]
SETS = [[3.0, 5.5, 2.0, 6.5, 4.0], [2.0, 3.5, 4.5, 1.5, 3.0], [1.5, 1.0, 2.5, 2.0, 2.5]]
COLOURS = ["RED", "GREEN", "BLUE"]
PRICE = [  # open, high, low, close
    (10.0, 12.5, 9.0, 12.0), (12.0, 13.0, 10.5, 11.0), (11.0, 11.5, 8.0, 8.5), (8.5, 10.5, 8.0, 10.0),
    (10.0, 14.0, 9.5, 13.5), (13.5, 15.0, 12.5, 14.5), (14.5, 15.5, 11.0, 11.5), (11.5, 13.0, 10.0, 12.5),
    (12.5, 16.0, 12.0, 15.5), (15.5, 17.0, 14.0, 14.5)]


def panel(x, y, title, *scaling):
    k.axspos(x, y)
    k.axslen(760, 620)
    k.height(28)
    k.titlin(title, 4)
    k.graf(*scaling)
    k.title()
    k.height(24)


def draw(device="PNG", name="bars.png"):
    k.metafl(device)
    k.setfil(name)
    k.filmod("DELE")
    k.scrmod("REVERS")
    k.kolini()
    k.unit(0)
    k.complx()
    k.shdpat(16)

    panel(230, 900, "Grouped", 0.0, 6.0, 0.0, 1.0, 0.0, 8.0, 0.0, 2.0)
    k.labels("SECO", "BARS")
    k.labpos("OUTS", "BARS")
    k.bargrp(3, 0.15)
    k.legini("", 3, 8)
    for i, (ys, c) in enumerate(zip(SETS, COLOURS)):
        k.color(c)
        k.bars(list(X), [0.0] * 5, ys, 5)
        k.leglin("", f"set {i + 1}", i + 1)
    k.color("FORE")
    k.legend("", 7)
    k.bargrp(1, 0.0)
    k.endgrf()

    panel(1210, 900, "Stacked", 0.0, 6.0, 0.0, 1.0, 0.0, 14.0, 0.0, 2.0)
    k.labels("DELT", "BARS")
    k.labpos("CENT", "BARS")
    k.shdpat(16)
    base = [0.0] * 5
    for ys, c in zip(SETS, COLOURS):
        top = [b + y for b, y in zip(base, ys)]
        k.color(c)
        k.bars(list(X), list(base), top, 5)
        base = top
    k.color("FORE")
    k.endgrf()

    panel(2190, 900, "Horizontal", 0.0, 8.0, 0.0, 2.0, 0.0, 6.0, 0.0, 1.0)
    k.bartyp("HORI")
    k.labels("SECO", "BARS")
    k.labpos("AUTO", "BARS")
    k.shdpat(16)
    k.color("ORANGE")
    k.bars(list(X), [0.0] * 5, [6.5, 0.5, 4.0, 7.2, 2.5], 5)
    k.color("FORE")
    k.endgrf()

    panel(230, 1900, "3-D look", 0.0, 6.0, 0.0, 1.0, 0.0, 8.0, 0.0, 2.0)
    k.bartyp("3DVE")
    k.labels("SECO", "BARS")
    k.labpos("INSI", "BARS")
    k.shdpat(16)
    k.barclr(k.intrgb(0.3, 0.5, 0.9), k.intrgb(0.15, 0.3, 0.6), k.intrgb(0.6, 0.75, 1.0))
    k.bars(list(X), [0.0] * 5, SETS[0], 5)
    k.barclr(-1, -1, -1)
    k.bartyp("VERT")
    k.endgrf()

    panel(1210, 1900, "Candlesticks", 0.0, 11.0, 0.0, 2.0, 6.0, 18.0, 6.0, 2.0)
    k.bartyp("CAND")
    k.barwth(0.6)
    k.barclr(-1, k.intrgb(0.0, 0.6, 0.0), k.intrgb(0.8, 0.0, 0.0))
    columns = list(zip(*PRICE))
    k.fbars(list(range(1, 11)), *[list(c) for c in columns], 10)
    k.barclr(-1, -1, -1)
    k.barwth(0.75)
    k.endgrf()

    panel(2190, 1900, "Shielded", 0.0, 6.0, 0.0, 1.0, 0.0, 8.0, 0.0, 2.0)
    k.shield("BARS", "ON")
    k.shield("MESS", "ON")
    k.labels("SECO", "BARS")
    k.labpos("OUTS", "BARS")
    k.shdpat(0)
    k.color("BLUE")
    k.bars(list(X), [0.0] * 5, SETS[1], 5)
    k.color("FORE")
    k.messag("grid behind", 2260, 1360)
    k.color("GRAY")
    k.grid(4, 4)
    k.color("FORE")
    k.shield("BARS", "RESE")
    k.shield("MESS", "RESE")
    k.endgrf()
    k.kolfin()


def draw_3d(device="PNG", name="bars3d.png"):
    k.metafl(device)
    k.setfil(name)
    k.filmod("DELE")
    k.scrmod("REVERS")
    k.kolini()
    k.unit(0)
    k.complx()
    k.axis3d(2.0, 2.0, 1.6)
    k.view3d(-4.0, -5.0, 3.5, "ABS")
    k.graf3d(0.0, 5.0, 0.0, 1.0, 0.0, 5.0, 0.0, 1.0, 0.0, 10.0, 0.0, 2.0)
    colours = [k.intrgb(0.9, 0.2, 0.2), k.intrgb(0.2, 0.7, 0.2), k.intrgb(0.2, 0.3, 0.9)]
    cells = [(i, j) for i in range(1, 5) for j in range(1, 5)]
    n = len(cells)
    k.bars3d([float(i) for i, _ in cells], [float(j) for _, j in cells], [0.0] * n,
             [float((3 * i + 2 * j) % 9 + 1) for i, j in cells], [0.6] * n, [0.6] * n,
             [colours[j - 1 if j < 4 else 0] for _, j in cells], n)
    k.endgrf()
    k.kolfin()


if __name__ == "__main__":
    draw(*sys.argv[1:3])
    if len(sys.argv) < 3:
        draw_3d(*sys.argv[1:2])
