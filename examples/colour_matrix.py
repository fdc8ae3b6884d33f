#!/usr/bin/env python3
"""Colour plots: a heat map of a 1000 by 1000 matrix with its colour bar,
a triangulated field, and scattered points spread over a grid.

    python3 examples/colour_matrix.py [DEVICE] [FILE]

DEVICE is a device keyword (default PNG).  Left: an interference pattern
of two point sources on a 1000 by 1000 grid, drawn by crvmat in the
perceptually uniform table VIRI, with a hole of NaN values that nancrv
leaves unpainted.  Top right: a field on a disk, triangulated ring by ring
and shaded smoothly by crvtri through the colour table.  Bottom right: 400
scattered samples of a hill, spread over a 60 by 40 grid by getmat, the
samples marked as crosses.
"""
import math
import sys

import numpy as np

import kolvex as k


def interference(n=1000):
    x = np.linspace(-1.0, 1.0, n)
    X, Y = np.meshgrid(x, x, indexing="ij")
    r1 = np.hypot(X + 0.35, Y)
    r2 = np.hypot(X - 0.35, Y)
    z = np.cos(40 * r1) / (1 + 4 * r1) + np.cos(40 * r2) / (1 + 4 * r2)
    z[(X - 0.55) ** 2 + (Y + 0.55) ** 2 < 0.02] = np.nan
    return z


def disk(rings=24, first=6):
    """Points on rings around the centre and the triangles between rings."""
    xs, ys, start = [0.0], [0.0], [0]
    for r in range(1, rings + 1):
        start.append(len(xs))
        n = first * r
        for i in range(n):
            t = 2 * math.pi * i / n
            xs.append(r / rings * math.cos(t))
            ys.append(r / rings * math.sin(t))
    tri = []
    for r in range(1, rings + 1):
        n, a = first * r, start[r]
        if r == 1:
            tri += [(0, a + i, a + (i + 1) % n) for i in range(n)]
            continue
        m, b = first * (r - 1), start[r - 1]
        i = j = 0
        while i < n or j < m:
            # walk both rings by angle, closing a triangle at each step
            if j >= m or (i < n and (i + 1) / n <= (j + 1) / m):
                tri.append((a + i % n, a + (i + 1) % n, b + j % m))
                i += 1
            else:
                tri.append((b + j % m, b + (j + 1) % m, a + i % n))
                j += 1
    x, y = np.array(xs), np.array(ys)
    z = np.sin(3 * x) * np.cos(2 * y) + 0.5 * x
    t = np.array(tri) + 1  # vertex numbers from 1
    return x, y, z, t[:, 0].copy(), t[:, 1].copy(), t[:, 2].copy()


def draw(device="PNG", filename="colour_matrix.png"):
    k.metafl(device)
    k.setfil(filename)
    k.filmod("DELE")
    k.scrmod("REVERS")
    k.kolini()
    k.pagera()
    k.complx()
    k.height(30)
    k.hname(34)
    k.htitle(36)
    k.nancrv("ON")
    k.setvlt("VIRI")

    # The heat map.
    n = 1000
    k.axspos(230, 1850)
    k.ax3len(1250, 1250, 1250)
    k.autres(n, n)
    k.name("x", "X")
    k.name("y", "Y")
    k.name("amplitude", "Z")
    k.labdig(1, "XY")
    k.titlin("Two sources, 1000 x 1000 matrix", 2)
    k.graf3(-1.0, 1.0, -1.0, 0.5, -1.0, 1.0, -1.0, 0.5, -1.5, 1.5, -1.5, 0.5)
    k.crvmat(interference(n), n, n, 1, 1)
    k.title()
    k.endgrf()

    # The triangulated field, shaded smoothly through the colour table.
    k.titlin("Triangulated field (crvtri)", 2)
    k.axspos(2010, 880)
    k.ax3len(600, 600, 600)
    k.widbar(50)
    # Smooth shading needs pixels; a vector file gets flat triangles.
    k.shdmod("SMOO" if device.upper() in ("PNG", "PS", "EPS", "PDF") else "FLAT", "SURFACE")
    x, y, z, i1, i2, i3 = disk()
    k.graf3(-1.0, 1.0, -1.0, 0.5, -1.0, 1.0, -1.0, 0.5, -1.5, 1.5, -1.5, 0.5)
    k.crvtri(x, y, z, len(x), i1, i2, i3, len(i1))
    k.title()
    k.endgrf()
    k.shdmod("FLAT", "SURFACE")

    # Scattered samples spread over a grid, and the samples themselves.
    rng = np.random.default_rng(3)
    sx, sy = rng.uniform(-1, 1, 400), rng.uniform(-1, 1, 400)
    sz = np.exp(-3 * ((sx - 0.2) ** 2 + (sy + 0.1) ** 2))
    k.titlin("Scattered points (getmat)", 2)
    k.axspos(2010, 1870)
    k.autres(60, 40)
    k.graf3(-1.0, 1.0, -1.0, 0.5, -1.0, 1.0, -1.0, 0.5, 0.0, 1.0, 0.0, 0.25)
    zmat = np.zeros((60, 40))
    k.mdfmat(4, 4, 2.0)
    k.getmat(sx, sy, sz, 400, zmat, 60, 40, 0.0)
    k.crvmat(zmat, 60, 40, 1, 1)
    k.color("FORE")
    k.incmrk(-1)
    k.marker(4)
    k.hsymbl(14)
    k.curve(sx, sy, 400)
    k.title()
    k.endgrf()
    k.kolfin()


if __name__ == "__main__":
    dev = sys.argv[1] if len(sys.argv) > 1 else "PNG"
    name = sys.argv[2] if len(sys.argv) > 2 else "colour_matrix." + dev.lower()
    draw(dev, name)
