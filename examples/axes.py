#!/usr/bin/env python3
"""Axis systems: every label form, tick position, names, titles and grids.

    python3 examples/axes.py [DEVICE] [FILE]

DEVICE is a device keyword (default PNG).  The first page holds six axis
systems side by side: linear axes with a grid and four title lines;
logarithmic axes with powers of ten and the full minor grid; exponent forms
with ticks inside and vertical labels; the multiplication-sign form with
centred ticks and automatic digits; an automatic scaling with a reversed
axis; own labels between the ticks with the line through the origin.  The
second page is a single figure as a journal would print it, in a second
file (FILE with "_figure" before its extension).
"""
import math
import sys

import kolvex as k

W, H = 600, 480          # axis lengths of the panels on page 1


def panel(col, row, names, setup, args, title=None):
    k.axspos(280 + col * 1000, 860 + row * 1000)
    k.axslen(W, H)
    k.name(names[0], "X")
    k.name(names[1], "Y")
    setup()
    k.graf(*args)
    if title:
        k.titlin(title, 4)
        k.title()
    return args


def finish_panel():
    k.endgrf()
    k.reset("ALL")
    k.height(28)
    k.hname(30)


def page_one():
    k.height(28)
    k.hname(30)
    k.titlin("Axis systems", 1)
    k.titlin("linear axes with a grid", -2)
    k.titlin("a label every 2 s, five ticks per label", 3)

    def linear():
        k.ticks(5, "X")
        k.labdig(-1, "X")
    panel(0, 0, ("Time [s]", "Voltage [V]"), linear, (0., 10., 0., 2., -1., 1., -1., 0.5),
          "four title lines")
    k.grid(1, 1)
    finish_panel()

    def logarithmic():
        k.scale("LOG", "XY")
        k.labels("LOG", "X")
        k.labels("CLOG", "Y")
        k.labdig(-1, "XY")
        k.logtic("FULL")
    panel(1, 0, ("Frequency [Hz]", "Power"), logarithmic, (0., 4., 0., 1., -2., 2., -2., 1.),
          "LOG and CLOG")
    k.grid(2, 2)
    finish_panel()

    def exponents():
        k.labels("EXP", "X")
        k.labels("FEXP", "Y")
        k.ticpos("REVE", "XY")
        k.labtyp("VERT", "X")
        k.labdig(1, "XY")
    panel(2, 0, ("Energy [J]", "Rate"), exponents, (0., 4e4, 0., 1e4, 0., 3e-3, 0., 1e-3),
          "EXP, FEXP, ticks inside")
    finish_panel()

    def xexp():
        k.labels("XEXP", "X")
        k.ticpos("CENT", "XY")
        k.labdig(-2, "Y")
        k.setgrf("NAME", "NAME", "LINE", "TICK")
        k.labdig(1, "X")
    panel(0, 1, ("Distance [m]", "Offset"), xexp, (0., 3e-6, 0., 1e-6, -0.75, 0.75, -0.75, 0.25),
          "XEXP, centred ticks, automatic digits")
    finish_panel()

    def automatic():
        data = [math.sin(i / 7.0) * 3.7e-4 for i in range(50)]
        k.setscl(data, len(data), "Y")
        k.labdig(-1, "X")
        k.ticks(5, "X")
    panel(1, 1, ("Sample", "Signal"), automatic, (49., 0., 40., -10., 0., 0., 0., 0.),
          "automatic Y, reversed X")
    finish_panel()

    def own():
        for i, m in enumerate(["Jan", "Feb", "Mar", "Apr", "May", "Jun"], 1):
            k.mylab(m, i, "X")
        k.labels("MYLA", "X")
        k.labpos("CENT", "X")
        k.labdig(2, "Y")
    panel(2, 1, ("Month", "Share"), own, (0., 6., 0., 1., -0.25, 1., -0.25, 0.25),
          "own labels between ticks")
    k.axgit()
    finish_panel()


def page_two():
    k.height(36)
    k.hname(40)
    k.axspos(500, 1750)
    k.axslen(2000, 1300)
    k.name("Wavelength [nm]", "X")
    k.name("Absorbance", "Y")
    k.labdig(-1, "X")
    k.labdig(1, "Y")
    k.ticks(5, "XY")
    k.ticpos("REVE", "XY")
    k.titlin("Figure 1", 1)
    k.titlin("Absorption spectrum", 3)
    k.graf(400., 700., 400., 50., 0., 1.2, 0., 0.2)
    k.title()
    k.endgrf()


def draw(device="PNG", name="axes.png"):
    stem, dot, ext = name.rpartition(".")
    for page, fname in ((page_one, name), (page_two, f"{stem}_figure.{ext}" if dot else name + "_figure")):
        k.metafl(device)
        k.filmod("DELE")
        k.setfil(fname)
        k.setpag("DA4L")
        k.scrmod("REVERS")
        k.kolini()
        page()
        k.kolfin()


if __name__ == "__main__":
    draw(*sys.argv[1:])
