#!/usr/bin/env python3
"""The 24 plot symbols, a user symbol of mysymb, sizes and rotations.

    python3 examples/symbols.py [DEVICE] [FILE]

Top rows: symbols 0 to 23 with their numbers.  Bottom row: symbol 3 turned
by symrot in steps of 15 degrees, symbol 21 in growing sizes, and a filled
user symbol (an arrow head) with number 30.
"""
import sys

import kolvex as k


def draw(device="PNG", name="symbols.png"):
    k.metafl(device)
    k.setfil(name)
    k.filmod("DELE")
    k.scrmod("REVERS")
    k.kolini()
    k.unit(0)
    k.complx()
    k.height(40)
    k.hsymbl(150)
    for n in range(24):
        x, y = 250 + (n % 8) * 350, 300 + (n // 8) * 420
        k.color("BLUE" if n < 16 else "RED")
        k.symbol(n, x, y)
        k.color("FORE")
        k.number(float(n), -1, x - 30, y + 110)
    k.color("FORE")
    k.hsymbl(120)
    for i in range(7):
        k.symrot(15.0 * i)
        k.symbol(14, 200 + i * 180, 1650)
    k.symrot(0.0)
    for i in range(5):
        k.hsymbl(20 + 40 * i)
        k.symbol(21, 1560 + i * 150, 1650)
    k.mysymb([0.0, 1.0, 0.0, -1.0, 0.0], [1.0, -1.0, -0.4, -1.0, 1.0], 5, 30, 1)
    k.hsymbl(200)
    k.color("GREEN")
    k.symbol(30, 2650, 1650)
    k.kolfin()


if __name__ == "__main__":
    draw(*sys.argv[1:3])
