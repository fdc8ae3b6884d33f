#!/usr/bin/env python3
"""The everyday plot: an axis system, three curves with symbols, a legend
and a title, written to demo.png.

    python3 examples/demo.py [DEVICE] [FILE]
"""
import math
import sys

import kolvex as k


def draw(device="PNG", name="demo.png"):
    x = [i * 0.1 for i in range(101)]
    k.metafl(device)
    k.setfil(name)
    k.filmod("DELE")
    k.scrmod("REVERS")          # dark lines on white paper
    k.kolini()
    k.unit(0)
    k.complx()
    k.height(40)
    k.titlin("Damped oscillations", 2)
    k.name("Time t [s]", "X")
    k.name("Amplitude", "Y")
    k.axspos(450, 1800)
    k.axslen(2200, 1400)
    k.graf(0.0, 10.0, 0.0, 2.0, -1.0, 1.0, -1.0, 0.5)
    k.title()
    k.height(32)
    k.chncrv("BOTH")             # colour and line style change from curve to curve
    k.thkcrv(2)
    k.curve(x, [math.exp(-0.3 * t) * math.cos(2 * t) for t in x], len(x))
    k.curve(x, [math.exp(-0.2 * t) * math.sin(1.5 * t) for t in x], len(x))
    k.incmrk(10)                 # a symbol at every tenth point
    k.marker(21)
    k.curve(x, [0.8 * math.exp(-0.5 * t) for t in x], len(x))
    k.legini("", 3, 30)
    k.leglin("", "cos 2t, damped", 1)
    k.leglin("", "sin 1.5t, damped", 2)
    k.leglin("", "envelope", 3)
    k.legtit("Curves")
    k.legend("", 3 + 4)          # upper right corner of the axis system
    k.endgrf()
    k.kolfin()


if __name__ == "__main__":
    draw(*sys.argv[1:3])
