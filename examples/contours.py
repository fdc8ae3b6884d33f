#!/usr/bin/env python3
"""Labelled contour lines of four analytic fields on one page.

    python3 examples/contours.py [DEVICE] [FILE]

DEVICE is a device keyword (default PNG).  Top left a saddle x^2 - y^2,
whose level 0 crosses itself at the saddle point; top right rings of closed
contours of a damped ripple; bottom left a steep front tanh(8 (x - y^2))
where the lines crowd; bottom right a smooth hill with two holes of NaN
values, around which the lines stop.
"""
import math
import sys

import numpy as np

import kolvex as k

W, H = 1000, 720


def fields():
    n, m = 81, 61
    x = np.linspace(-2.0, 2.0, n)
    y = np.linspace(-1.5, 1.5, m)
    X, Y = np.meshgrid(x, y, indexing="ij")
    saddle = X ** 2 - Y ** 2
    r = np.hypot(X, Y)
    rings = np.cos(3 * r) * np.exp(-0.3 * r)
    front = np.tanh(8 * (X - Y ** 2 + 0.5))
    hill = np.exp(-(X ** 2 + Y ** 2) / 2) + 0.3 * X
    holes = hill.copy()
    holes[(X - 0.6) ** 2 + (Y - 0.3) ** 2 < 0.15] = np.nan
    holes[(np.abs(X + 1.0) < 0.25) & (np.abs(Y + 0.5) < 0.5)] = np.nan
    return x, y, [
        ("saddle x*x - y*y", saddle, np.arange(-3.5, 4.0, 0.5), 1),
        ("rings cos(3r) exp(-0.3r)", rings, np.arange(-0.8, 1.0, 0.2), 1),
        ("steep front tanh(8(x - y*y + 0.5))", front, np.arange(-0.9, 1.0, 0.3), 1),
        ("hill with NaN holes", holes, np.arange(-0.4, 1.6, 0.2), 1),
    ]


def panel(col, row, title, x, y, z, levels, ndig):
    k.axspos(250 + col * 1330, 950 + row * 1000)
    k.axslen(W, H)
    k.titlin(title, 4)
    k.labdig(ndig, "CON")
    k.graf(-2.0, 2.0, -2.0, 1.0, -1.5, 1.5, -1.5, 0.5)
    k.title()
    colours = ["RED", "BLUE", "GREEN", "MAGENTA", "CYAN", "ORANGE"]
    for i, lev in enumerate(levels):
        k.color(colours[i % len(colours)])
        k.contur(x, len(x), y, len(y), z, float(round(lev, 10)))
    k.color("FORE")
    if "NaN" in title:
        # the borders of the holes, dashed
        k.dash()
        t = np.linspace(0, 2 * math.pi, 100)
        r = math.sqrt(0.15)
        k.curve(0.6 + r * np.cos(t), 0.3 + r * np.sin(t), 100)
        k.curve(np.array([-1.25, -0.75, -0.75, -1.25, -1.25]), np.array([-1.0, -1.0, 0.0, 0.0, -1.0]), 5)
        k.solid()
    k.endgrf()


def draw(device="PNG", filename="contours.png"):
    k.metafl(device)
    k.setfil(filename)
    k.filmod("DELE")
    k.scrmod("REVERS")
    k.kolini()
    k.pagera()
    k.height(22)
    k.htitle(28)
    k.labels("FLOA", "CON")
    k.labdis(400, "CON")
    x, y, items = fields()
    for idx, (title, z, levels, ndig) in enumerate(items):
        panel(idx % 2, idx // 2, title, x, y, z, levels, ndig)
    k.kolfin()


if __name__ == "__main__":
    dev = sys.argv[1] if len(sys.argv) > 1 else "PNG"
    name = sys.argv[2] if len(sys.argv) > 2 else "contours." + dev.lower()
    draw(dev, name)
