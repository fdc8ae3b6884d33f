#!/usr/bin/env python3
"""The cost of shield regions on the drawing path of a long curve.

Draws a curve of 10^6 points (a noisy sine over the axis system) into a PNG
and into an SVG, solid (thinned to what the page shows) and dashed (every
segment goes through the layer and the shield test), once with no region, once with 100 shield rectangles laid
in a 10 by 10 grid over the page, and prints the time of each and the
ratio.  Target: 100 regions cost at most 3 times what no region costs.

    KOLVEX_BUILD_DIR=build python3 bench/shield.py
"""
import os
import sys
import tempfile
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
sys.path.insert(0, os.path.abspath(os.environ.get("KOLVEX_BUILD_DIR", os.path.join(ROOT, "build"))))

import numpy as np  # noqa: E402

import kolvex  # noqa: E402

N = 1_000_000
TARGET = 3.0


def run(device, nreg, path, dashed):
    rng = np.random.default_rng(7)
    x = np.linspace(0.0, 1.0, N)
    y = 0.5 + 0.4 * np.sin(40 * x) + rng.normal(0, 0.01, N)
    kolvex.metafl(device)
    kolvex.setfil(path)
    kolvex.filmod("DELE")
    kolvex.kolini()
    kolvex.errmod("ALL", "OFF")
    kolvex.graf(0.0, 1.0, 0.0, 0.2, 0.0, 1.0, 0.0, 0.2)
    for i in range(nreg):
        kolvex.shlrec(400 + (i % 10) * 230, 300 + (i // 10) * 160, 120, 60)
    if dashed:  # every segment reaches the layer: no thinning of the curve
        kolvex.dash()
    t0 = time.perf_counter()
    kolvex.curve(x, y, N)
    t = time.perf_counter() - t0
    kolvex.endgrf()
    kolvex.kolfin()
    return t


def best(*args, repeat=3):
    return min(run(*args) for _ in range(repeat))


def main():
    worst = 0.0
    with tempfile.TemporaryDirectory() as d:
        for device, ext, dashed in (("PNG", "png", 0), ("SVG", "svg", 0), ("PNG", "png", 1), ("SVG", "svg", 1)):
            path = os.path.join(d, "s." + ext)
            t0 = best(device, 0, path, dashed)
            t100 = best(device, 100, path, dashed)
            ratio = t100 / t0
            worst = max(worst, ratio)
            print(f"{device} {'dashed' if dashed else 'solid '}: no region {t0 * 1e3:.1f} ms, 100 regions {t100 * 1e3:.1f} ms, "
                  f"ratio {ratio:.2f} (target at most {TARGET})")
    return 0 if worst <= TARGET else 1


if __name__ == "__main__":
    sys.exit(main())
