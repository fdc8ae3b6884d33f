#!/usr/bin/env python3
"""Labels kept readable on a dense grid by shield regions.

    python3 examples/shields.py [DEVICE] [FILE]

The labels are written first; then a rectangle, a rotated rectangle, a
circle, an ellipse, a pie sector and a polygon are registered, and the
dense grid and the curves drawn after them are cut at those regions.
"""
import math
import sys

import kolvex as k


def draw(device="PNG", name="shields.png"):
    k.metafl(device)
    k.setfil(name)
    k.filmod("DELE")
    k.scrmod("REVERS")
    k.kolini()
    k.complx()
    k.axspos(400, 1800)
    k.axslen(2200, 1500)
    k.graf(0.0, 10.0, 0.0, 1.0, -1.0, 1.0, -1.0, 0.2)
    k.height(40)
    labels = [("rectangle", 600, 500), ("circle", 1350, 800), ("polygon", 2000, 1300)]
    for text, x, y in labels:
        k.messag(text, x, y)
    for text, x, y in labels:
        k.shlrec(x - 15, y - 15, k.nlmess(text) + 30, 70)
    k.shlrct(1900, 450, 300, 100, 30)
    k.shlcir(1000, 1300, 120)
    k.shlell(2300, 800, 200, 90, -20)
    k.shlpie(700, 1500, 150, 30, 150)
    k.shlpol([1400, 1700, 1600, 1300], [1400, 1450, 1700, 1650], 4)
    k.color("GRAY")
    for i in range(60):  # a dense grid: 60 lines each way
        k.xmove(400 + i * 2200 / 59, 300)
        k.xdraw(400 + i * 2200 / 59, 1800)
        k.xmove(400, 300 + i * 1500 / 59)
        k.xdraw(2600, 300 + i * 1500 / 59)
    k.color("RED")
    k.thkcrv(3)
    x = [i * 0.05 for i in range(201)]
    k.curve(x, [math.sin(v) for v in x], len(x))
    k.color("FORE")
    k.endgrf()
    k.kolfin()


if __name__ == "__main__":
    draw(*sys.argv[1:3])
