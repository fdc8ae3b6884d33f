#!/usr/bin/env python3
"""Measurements with error bars, a regression line by linfit, a shaded
band between two curves, and a histogram of histog drawn as bars.

    python3 examples/errors_and_areas.py [DEVICE] [FILE]
"""
import math
import random
import sys

import kolvex as k


def draw(device="PNG", name="errors_and_areas.png"):
    rnd = random.Random(4)
    x = [0.5 + i for i in range(10)]
    y = [0.8 * v + 1 + rnd.gauss(0, 0.5) for v in x]
    e = [0.3 + 0.4 * rnd.random() for _ in x]
    k.metafl(device)
    k.setfil(name)
    k.filmod("DELE")
    k.scrmod("REVERS")
    k.kolini()
    k.unit(0)
    k.complx()
    k.height(30)
    # Left: measurements, their fit and the band of one standard error.
    k.axspos(250, 1650)
    k.axslen(1200, 1200)
    k.graf(0.0, 10.0, 0.0, 2.0, 0.0, 10.0, 0.0, 2.0)
    a, b, r = k.linfit(x, y, len(x), "NONE")
    s = math.sqrt(sum((yi - a * xi - b) ** 2 for xi, yi in zip(x, y)) / (len(x) - 2))
    xs = [i * 0.25 for i in range(41)]
    k.shdpat(16)
    k.color("CYAN")
    k.noarln()
    k.shdcrv(xs, [a * v + b - s for v in xs], len(xs), xs, [a * v + b + s for v in xs], len(xs))
    k.color("BLUE")
    k.linfit(x, y, len(x), "LINE")
    k.color("RED")
    k.marker(21)
    k.hsymbl(30)
    k.errbar(x, y, e, e, len(x))
    k.color("FORE")
    k.messag(f"y = {a:.2f} x + {b:.2f},  r = {r:.3f}", 300, 500)
    k.endgrf()
    # Right: a histogram of rounded normal values.
    data = [round(rnd.gauss(5, 1.6)) for _ in range(400)]
    xh, yh = [0.0] * len(data), [0.0] * len(data)
    m = k.histog(data, len(data), xh, yh)
    k.axspos(1650, 1650)
    k.axslen(1200, 1200)
    k.graf(-1.0, 11.0, 0.0, 2.0, 0.0, 100.0, 0.0, 20.0)
    k.polcrv("FBAR")
    k.barwth(0.8)
    k.color("ORANGE")
    k.curve(xh[:m], yh[:m], m)
    k.polcrv("LINE")
    k.color("FORE")
    k.endgrf()
    k.kolfin()


if __name__ == "__main__":
    draw(*sys.argv[1:3])
