#!/usr/bin/env python3
"""Hidden-line surfaces: four classic meshes on one page.

    python3 examples/hidden_surfaces.py [DEVICE] [FILE]

DEVICE is a device keyword (default PNG).  Top left a damped ripple
sin(2r)/(1 + r) from a matrix; top right a saddle drawn by a function with
its upper side red and its underside blue, seen from below its rim; bottom
left a ridge in front of a lower plane, which it hides; bottom right a
Gaussian hill drawn as columns.
"""
import math
import sys

import numpy as np

import kolvex as k

N = 41


def panel(col, row, title, xa, xe, za, ze, view=None):
    k.axspos(200 + 1450 * col, 1030 + 1000 * row)
    k.axslen(1150, 900)
    k.axis3d(2, 2, 1.4)
    k.view3d(*(view or (3.2, -4.2, 3.4)), "ABS")
    k.labdig(1, "XYZ")
    k.titlin(title, 4)
    k.graf3d(xa, xe, xa, (xe - xa) / 4, xa, xe, xa, (xe - xa) / 4, za, ze, za, (ze - za) / 4)
    k.title()


def ripple():
    x = np.linspace(-3, 3, N)
    X, Y = np.meshgrid(x, x, indexing="ij")
    r = np.hypot(X, Y)
    return np.sin(2 * r) / (1 + r)


def ridge():
    """z = 0 everywhere but a ridge along the third row from the front."""
    x = np.linspace(0, 4, 21)
    z = np.zeros((21, 21))
    z[:, 4] = 1.5
    return x, z


def draw(device="PNG", filename="hidden_surfaces.png"):
    k.metafl(device)
    k.setfil(filename)
    k.filmod("DELE")
    k.scrmod("REVERS")
    k.kolini()
    k.pagera()
    k.height(22)
    k.htitle(28)

    panel(0, 0, "sin(2r)/(1+r) from a matrix", -3, 3, -0.6, 1, view=(3.7, -4.8, 3.9))
    k.surmat(ripple(), N, N, 1, 1)
    k.endgrf()

    panel(1, 0, "saddle by a function, two sides", -2, 2, -1, 1, view=(3, -4, -0.9))
    k.surclr(k.intrgb(0.85, 0.1, 0.1), k.intrgb(0.1, 0.2, 0.85))
    k.surfun(lambda x, y: 0.22 * (x * x - y * y), 1, 0.2, 1, 0.2)
    k.surclr(-1, -1)
    k.endgrf()

    x, z = ridge()
    panel(0, 1, "a ridge hides the plane behind it", 0, 4, 0, 2, view=(1.8, -5, 2.2))
    k.surfce(x, 21, x, 21, z)
    k.endgrf()

    x = np.linspace(-2, 2, 15)
    X, Y = np.meshgrid(x, x, indexing="ij")
    k.polcrv("BARS")
    panel(1, 1, "Gaussian hill as columns", -2.3, 2.3, 0, 1)
    k.surfce(x, 15, x, 15, np.exp(-(X * X + Y * Y) / 1.5))
    k.endgrf()
    k.polcrv("LINEAR")
    k.kolfin()


if __name__ == "__main__":
    dev = sys.argv[1] if len(sys.argv) > 1 else "PNG"
    name = sys.argv[2] if len(sys.argv) > 2 else "hidden_surfaces." + dev.lower()
    draw(dev, name)
