#!/usr/bin/env python3
"""Every shading pattern and line style on one page.

    python3 examples/fill_patterns.py [DEVICE] [FILE]

DEVICE is a device keyword (default PNG).  Row by row: the eighteen
patterns of shdpat, 0 to 17 (16 is the solid fill); then the eight line
styles of lintyp, wide lines with their caps, a polygon with a hole and a
self-crossing star hatched at an angle, and a polygon cut by the clip
window.
"""
import sys

import kolvex as k

COLOURS = ["BLUE", "RED", "GREEN", "FORE", "CYAN", "ORANGE"]


def draw_page(device="PNG", name="fill_patterns.png"):
    k.metafl(device)
    k.filmod("DELE")
    k.setfil(name)
    k.scrmod("REVERS")
    k.kolini()
    k.unit(0)
    for p in range(18):
        col, row = p % 6, p // 6
        x, y = 100 + col * 470, 100 + row * 430
        k.color(COLOURS[p % 6])
        k.shdpat(p)
        k.areaf([x, x + 380, x + 300, x + 60], [y, y + 40, y + 360, y + 300], 4)
    k.color("FORE")
    k.shdpat(0)
    for t in range(8):
        k.lintyp(t)
        k.line(100, 1400 + t * 50, 1300, 1400 + t * 50)
    k.solid()
    for i, cap in enumerate(["CUT", "ROUN", "LONG"]):
        k.lncap(cap)
        k.linwid(15 + 10 * i)
        k.line(150, 1850 + i * 70, 1250, 1850 + i * 70)
    k.linwid(1)
    k.lncap("LONG")
    # A frame with a hole: the slit's two edges cancel.
    k.color("GREEN")
    k.mypat(30, 1, 2, 1)
    xs = [1450, 2050, 2050, 1450, 1450, 1600, 1600, 1900, 1900, 1600, 1450]
    ys = [1400, 1400, 1900, 1900, 1400, 1550, 1750, 1750, 1550, 1550, 1400]
    k.areaf(xs, ys, len(xs))
    # A five-pointed star drawn in one stroke: its inner pentagon is crossed
    # twice and stays empty.
    k.color("RED")
    k.mypat(120, 1, 1, 0)
    import math
    sx = [round(2450 + 330 * math.sin(4 * math.pi * i / 5)) for i in range(5)]
    sy = [round(1650 - 330 * math.cos(4 * math.pi * i / 5)) for i in range(5)]
    k.areaf(sx, sy, 5)
    # A solid polygon that leaves the clip window is hatched and cut.
    k.color("BLUE")
    k.clpwin(2100, 1950, 700, 120)
    k.shdpat(16)
    k.areaf([2000, 2900, 2900, 2000], [1900, 1900, 2090, 2090], 4)
    k.clpbor("PAGE")
    k.kolfin()


if __name__ == "__main__":
    draw_page(*(sys.argv[1:3] if len(sys.argv) > 2 else sys.argv[1:2] or ["PNG"]))
