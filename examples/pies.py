#!/usr/bin/env python3
"""Geometric figures and pie charts on one page.

    python3 examples/pies.py [DEVICE] [FILE]

Upper band: the figures in plot coordinates: a circle, a pie slice, an
elliptical arc turned by 30 degrees, a hatched ellipse, a ring sector, a
rounded rectangle, filled points and wind barbs of rising speed (calm,
5, 15, 65 and 120 units).  Lower half: a 2-D pie with labels outside and
bent leaders, its fourth segment moved out by a negative value; and the
same data as a 3-D pie with labels inside where they fit.
"""
import sys

import kolvex as k

DATA = [1.0, 2.5, 2.0, -2.7, 1.8]
NAMES = ["North", "East", "South", "West", "Centre"]


def figures():
    k.circle(230, 300, 160)
    k.shdpat(16)
    k.color("RED")
    k.pie(620, 300, 160, 30, 300)
    k.color("FORE")
    k.shdpat(0)
    k.arcell(1000, 300, 190, 90, 0, 230, 30)
    k.shdpat(5)
    k.ellips(1420, 300, 190, 100)
    k.shdpat(0)
    k.sector(1830, 300, 60, 160, 20, 250, k.intrgb(0.1, 0.4, 0.8))
    k.rndrec(2100, 160, 300, 280, 6)
    for i in range(4):
        k.point(2550 + 80 * i, 300, 40 + 10 * i, 40, k.intrgb(0.9, 0.3 * i, 0.1))
    k.hsymbl(40)
    for i, v in enumerate([0.2, 5, 15, 65, 120]):
        k.windbr(v, 300 + 420 * i, 720, 260, 40)


def pies():
    k.legini(" ", 5, 8)
    for i, t in enumerate(NAMES):
        k.leglin(" ", t, i + 1)
    k.height(30)
    k.chnpie("BOTH")
    k.labels("BOTH", "PIE")
    k.labpos("EXTE", "PIE")
    k.axspos(350, 1950)
    k.axslen(1000, 1000)
    k.piegrf(" ", 1, DATA, 5)
    k.endgrf()
    k.pietyp("3D")
    k.shdpat(16)
    k.chnpie("COLO")
    k.labels("PERC", "PIE")
    k.labpos("INTE", "PIE")
    k.axspos(1750, 1950)
    k.axslen(1000, 1000)
    k.piegrf(" ", 1, DATA, 5)
    k.endgrf()


def draw(device="PNG", name="pies.png"):
    k.metafl(device)
    k.setfil(name)
    k.filmod("DELE")
    k.scrmod("REVERS")
    k.kolini()
    k.complx()
    figures()
    pies()
    k.kolfin()


if __name__ == "__main__":
    draw(*sys.argv[1:3])
