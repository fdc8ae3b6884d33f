#!/usr/bin/env python3
"""PostScript output against matplotlib's PS backend, in one run.

A polyline of one million points goes once through the library's device
layer into a PostScript file (a C++ program, built here in Release mode)
and once through matplotlib's PostScript backend, each from the points in
memory to the closed file.  Two polylines: random points across the page
(the data of bench/raster.py), where every point must be written, and a
random walk along the page, the shape of a long time series.

Targets, on the random points: at least 10 times faster than matplotlib
by the clock, and a smaller file.  Processor times are shown beside: on a
busy machine they vary less than the clock.  The exit status is 1 when a target is missed.  The
walk is shown for information: matplotlib simplifies paths (it leaves out
points that lie nearly on a line with their neighbours), whereas this
format writes every distinct device point, so there matplotlib's file is
the smaller one.

    python3 bench/postscript.py [--points N] [--build DIR]
"""
import argparse
import json
import os
import subprocess
import sys
import tempfile
import time

import numpy as np
from harness import build

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
NXP, NYP = 2969, 2099  # the default page in plot coordinates


def scatter(n, seed=1):
    rnd = np.random.default_rng(seed)
    return rnd.uniform(0, NXP, n), rnd.uniform(0, NYP, n)


def walk(n, seed=1):
    rnd = np.random.default_rng(seed)
    x = np.linspace(100, NXP - 100, n)
    y = np.cumsum(rnd.standard_normal(n))
    y = 200 + (y - y.min()) / (np.ptp(y) or 1) * (NYP - 400)
    return x, y


def matplotlib_ps(x, y, path):
    import matplotlib

    matplotlib.use("ps")
    import matplotlib.pyplot as plt

    t0 = time.perf_counter()
    c0 = time.process_time()
    fig = plt.figure(figsize=(NXP / 254, NYP / 254))  # the same A4 page, in inches
    ax = fig.add_axes([0, 0, 1, 1])
    ax.set_axis_off()
    ax.set_xlim(0, NXP)
    ax.set_ylim(NYP, 0)
    ax.plot(x, y, color="red", linewidth=0.3)
    fig.savefig(path)
    plt.close(fig)
    return time.perf_counter() - t0, time.process_time() - c0


def main():
    ap = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    ap.add_argument("--points", type=int, default=1_000_000)
    ap.add_argument("--build", default=os.path.join(ROOT, "build", "bench"))
    ap.add_argument("--repeat", type=int, default=3, help="best of this many runs")
    a = ap.parse_args()
    exe = build(a.build, "kolvex_bench_ps")
    ok = True
    print(f"polyline of {a.points} points to PostScript, best of {a.repeat}")
    for name, make in (("random points", scatter), ("random walk", walk)):
        x, y = make(a.points)
        with tempfile.TemporaryDirectory() as tmp:
            data = os.path.join(tmp, "points.bin")
            np.column_stack([x, y]).astype("<f8").tofile(data)
            ours, theirs = [], []
            for _ in range(a.repeat):
                r = subprocess.run([exe, data, os.path.join(tmp, "kolvex.ps")], capture_output=True,
                                   text=True, cwd=tmp)
                if r.returncode != 0:
                    sys.exit("benchmark program failed: " + r.stderr)
                ours.append(json.loads(r.stdout.strip().splitlines()[-1]))
                mpl = os.path.join(tmp, "matplotlib.ps")
                theirs.append((*matplotlib_ps(x, y, mpl), os.path.getsize(mpl)))
        t = min(o["seconds"] for o in ours)
        c = min(o["cpu"] for o in ours)
        size = ours[0]["bytes"]
        mt = min(m[0] for m in theirs)
        mc = min(m[1] for m in theirs)
        msize = theirs[0][2]
        print(f"{name}:")
        print(f"  kolvex      {t:8.3f} s wall {c:8.3f} s cpu  {size:12d} bytes")
        print(f"  matplotlib  {mt:8.3f} s wall {mc:8.3f} s cpu  {msize:12d} bytes")
        print(f"  matplotlib / kolvex: wall {mt / t:6.1f}   cpu {mc / c:6.1f}   size {msize / size:6.2f}")
        if make is scatter:
            ok = mt >= 10 * t and size < msize
    print("targets met" if ok else "TARGET MISSED")
    return 0 if ok else 1


if __name__ == "__main__":
    sys.exit(main())
