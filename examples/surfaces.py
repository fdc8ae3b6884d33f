"""Shaded surfaces: analytic functions with and without lights, with a mesh,
from several view points, on PNG (z-buffer) and SVG (depth buffer), and two
surfaces that pass through each other."""
import math
import sys

import kolvex as k

N = 40


def grid(f, lo=-2.0, hi=2.0, n=N):
    xs = [lo + (hi - lo) * i / (n - 1) for i in range(n)]
    z = [[f(x, y) for y in xs] for x in xs]
    return xs, z


def plot(fname, fmt, surfaces, view=None, lights=False, mesh=False, smooth=False, zbuf=False):
    k.metafl(fmt)
    k.setfil(fname)
    k.filmod("DELE")
    k.scrmod("REVERS")
    if fmt == "PNG":
        k.imgfmt("RGB")
    k.kolini()
    k.setvlt("RAIN")
    k.axspos(300, 1800)
    k.axslen(1600, 1600)
    k.name("X", "X")
    k.name("Y", "Y")
    k.name("Z", "Z")
    if view:
        k.view3d(*view, "ABS")
    if lights:
        k.light("ON")
    if mesh:
        k.surmsh("ON")
    if smooth:
        k.shdmod("SMOO", "SURF")
    k.graf3d(-2, 2, -2, 1, -2, 2, -2, 1, -1, 1, -1, 0.5)
    # One bracket round all surfaces, so that they hide each other: the
    # z-buffer on PNG, the depth buffer on SVG.  The box is drawn inside it
    # on PNG, so that its hidden edges stay hidden.
    if zbuf:
        k.zbfini()
    else:
        k.dbfini()
    for xs, z in surfaces:
        k.surshd(xs, len(xs), xs, len(xs), z)
    if zbuf:
        k.box3d()
        k.zbffin()
    else:
        k.dbffin()
    k.endgrf()
    k.kolfin()


def main(out="."):
    sinc = grid(lambda x, y: math.sin(2 * math.hypot(x, y)) / (1 + math.hypot(x, y)))
    saddle = grid(lambda x, y: 0.25 * (x * x - y * y))
    bump = grid(lambda x, y: 0.9 * math.exp(-(x * x + y * y)) - 0.3)
    plane = grid(lambda x, y: 0.2 * x + 0.1 * y)
    for fmt, ext, zb in (("PNG", "png", True), ("SVG", "svg", False)):
        plot(f"{out}/sinc_flat.{ext}", fmt, [sinc], zbuf=zb)
        plot(f"{out}/sinc_light.{ext}", fmt, [sinc], lights=True, zbuf=zb)
        plot(f"{out}/saddle_mesh.{ext}", fmt, [saddle], mesh=True, view=(-6, -5, 5), zbuf=zb)
        plot(f"{out}/bump_side.{ext}", fmt, [bump], lights=True, view=(6, 2, 1.5), zbuf=zb)
        plot(f"{out}/cross.{ext}", fmt, [bump, plane], zbuf=zb)
    plot(f"{out}/sinc_smooth.png", "PNG", [sinc], lights=True, smooth=True)


if __name__ == "__main__":
    main(sys.argv[1] if len(sys.argv) > 1 else ".")
