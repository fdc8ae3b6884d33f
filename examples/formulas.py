#!/usr/bin/env python3
"""Formulas in texts, titles, axis names and legends, read in TeX mode.

    python3 examples/formulas.py [DEVICE] [FILE]

The left half of the page is a table of formulas written with messag:
exponents and indices, fractions, roots, sums and integrals with their
limits, growing brackets, accents, Greek letters and relations, function
names, sizes and colours.  The right half is a plot whose title, axis
names and legend entries are formulas too, so that every string of the
text path shows the same dialect.
"""
import math
import sys

import kolvex as k

FORMULAS = [
    r"$E = mc^2 \qquad e^{i\pi} + 1 = 0$",
    r"$\D x_{1,2} = \frac{-b \pm \sqrt{b^2 - 4ac}}{2a}$",
    r"$\D \sum_{k=1}^{n} k^2 = \frac{n(n+1)(2n+1)}{6}$",
    r"$\D \int_0^\infty e^{-x^2} dx = \frac{\sqrt{\pi}}{2}$",
    r"$\lim_{x \to 0} \frac{\sin x}{x} = 1$",
    r"$\D \left( \frac{\partial f}{\partial x} \right)^2 \le |\nabla f|^2$",
    r"$\sqrt[3]{\alpha^3 + \beta^3} \neq \alpha + \beta$",
    r"$\hat{x} \cdot \vec{v} \quad \overline{AB} \quad \tilde{n} \quad \dot{q}$",
    r"$\Gamma(z) = \int_0^\infty t^{z-1} e^{-t} dt$",
    r"$A \subseteq B \cup C, \; \forall \epsilon > 0 \; \exists \delta$",
    r"{\large Large,} {\small small,} {\red red} {\blue and blue} text",
]


def draw(device="PNG", name="formulas.png"):
    k.metafl(device)
    k.setfil(name)
    k.filmod("DELE")
    k.scrmod("REVERS")
    k.kolini()
    k.unit(0)
    k.complx()
    k.texmod("ON")
    k.height(40)
    k.messag(r"Formulas in {\it TeX} mode", 120, 90)
    k.height(40)
    for i, f in enumerate(FORMULAS):
        k.messag(f, 140, 250 + i * 165)

    # A plot whose strings are formulas as well.
    x = [i * 0.05 for i in range(81)]
    k.axspos(1750, 1700)
    k.axslen(1050, 1100)
    k.height(30)
    k.name(r"$t \; [\mu s]$", "X")
    k.name(r"$\D \frac{U(t)}{U_0}$", "Y")
    k.labdig(1, "XY")
    k.titlin(r"$U(t) = U_0 e^{-t/\tau} \cos \omega t$", 2)
    k.graf(0.0, 4.0, 0.0, 1.0, -1.0, 1.0, -1.0, 0.5)
    k.title()
    k.chncrv("COLO")
    k.curve(x, [math.exp(-v) * math.cos(4 * v) for v in x], len(x))
    k.curve(x, [math.exp(-v) for v in x], len(x))
    k.legini("", 2, 30)
    k.leglin("", r"$e^{-t/\tau} \cos \omega t$", 1)
    k.leglin("", r"$\pm e^{-t/\tau}$", 2)
    k.legend("", 7)
    k.endgrf()
    k.kolfin()


if __name__ == "__main__":
    draw(*sys.argv[1:3])
