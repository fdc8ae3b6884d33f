#!/usr/bin/env python3
"""Six map projections on one page, each with its grid of meridians and
parallels and a great circle from Lisbon to Tokyo.

    python3 examples/maps.py [DEVICE] [FILE]

DEVICE is a device keyword (default PNG).  Top row: Mercator, Aitoff and a
Lambert conformal conic map of the mid-latitudes; bottom row: an
orthographic and a stereographic view of a hemisphere centred on Europe,
and Sanson's sinusoidal map.  The Mercator axis is fitted to the map's
width (mapopt "AUTO").  The great circle (red, mapmod "GREA") bends
toward the pole on every map; the same two points joined in "STRA" mode
(green, dashed) make a straight line on the plate.
"""
import sys

import kolvex as k

W, H = 800, 400
LISBON = (-9.14, 38.72)
TOKYO = (139.69, 35.69)

PANELS = [
    # projection, limits and steps, title
    ("MERC", (-180, 180, -180, 120, -80, 80, -60, 30), "MERC"),
    ("AITO", (-180, 180, -180, 60, -90, 90, -90, 30), "AITO"),
    ("CONF", (30, 110, 30, 20, 20, 70, 20, 10), "CONF"),
    ("ORTH", (-180, 180, -180, 30, -90, 90, -90, 30), "ORTH centred on 20 E, 45 N"),
    ("STER", (-180, 180, -180, 30, -90, 90, -90, 30), "STER centred on 20 E, 45 N"),
    ("SANS", (-180, 180, -180, 60, -90, 90, -90, 30), "SANS"),
]


def panel(i, proj, lim, title):
    col, row = i % 3, i // 3
    k.axspos(300 + col * 900, 800 + row * 900)
    k.axslen(W, H)
    k.projct(proj)
    if proj in ("ORTH", "STER"):
        k.mappol(20.0, 45.0)
    k.labels("MAP", "XY")
    k.labdig(-1, "XY")
    # The Mercator map is narrower than its axis: the x axis shrinks to it.
    k.mapopt("AUTO" if proj == "MERC" else "STAN", "XAXI")
    k.maplab("LEFT", "LATI")
    k.titlin(title, 4)
    k.grafmp(*[float(v) for v in lim])
    k.title()
    k.color("BLUE")
    k.gridmp(1, 1)
    k.color("RED")
    k.mapmod("GREA")
    k.thkcrv(3)
    k.curvmp([LISBON[0], TOKYO[0]], [LISBON[1], TOKYO[1]], 2)
    k.thkcrv(1)
    k.color("GREEN")
    k.dash()
    k.mapmod("STRA")
    k.curvmp([LISBON[0], TOKYO[0]], [LISBON[1], TOKYO[1]], 2)
    k.solid()
    k.color("FORE")
    k.endgrf()


def draw(device="PNG", path="maps.png"):
    k.metafl(device)
    k.filmod("DELE")
    k.setfil(path)
    k.scrmod("REVERS")
    k.kolini()
    k.pagera()
    k.height(24)
    for i, (proj, lim, title) in enumerate(PANELS):
        panel(i, proj, lim, title)
    k.kolfin()


if __name__ == "__main__":
    dev = sys.argv[1] if len(sys.argv) > 1 else "PNG"
    draw(dev, sys.argv[2] if len(sys.argv) > 2 else "maps." + dev.lower())
