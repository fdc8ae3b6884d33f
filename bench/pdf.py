#!/usr/bin/env python3
"""PDF output against matplotlib's PDF backend, in one run.

Writes the same polyline of random points (one million by default) over a
DIN A4 landscape page, once through the library's device layer (a C++
program, built here in Release mode: kolini, the points, kolfin, the file
written; also once into memory with pdfbuf) and once with matplotlib
(plot and savefig, both compressing their content streams with zlib).
Random points leave neither side anything to simplify.  The same session
with uncompressed streams shows what the compression costs: zlib at its
default level, which the format asks for, takes most of the time.

Targets: at least 10 times faster than matplotlib, and a file no larger.
The exit status is 1 when a target is missed.

    python3 bench/pdf.py [--points N] [--build DIR]
"""
import argparse
import json
import os
import struct
import subprocess
import sys
import tempfile
import time
from harness import build

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
NXP, NYP = 2969, 2099  # the default page in plot coordinates (1/100 cm)


def points(n, seed=1):
    import random

    rnd = random.Random(seed)
    return [(rnd.uniform(0, NXP), rnd.uniform(0, NYP)) for _ in range(n)]


def matplotlib_pdf(pts, path):
    import matplotlib

    matplotlib.use("Agg")
    import matplotlib.pyplot as plt

    x = [p[0] for p in pts]
    y = [p[1] for p in pts]
    t0 = time.perf_counter()
    c0 = time.process_time()
    fig = plt.figure(figsize=(NXP / 254, NYP / 254))
    ax = fig.add_axes([0, 0, 1, 1])
    ax.set_axis_off()
    ax.set_xlim(0, NXP)
    ax.set_ylim(NYP, 0)
    ax.plot(x, y, lw=0.5, color="k")
    fig.savefig(path, format="pdf")
    t = time.perf_counter() - t0
    c = time.process_time() - c0
    plt.close(fig)
    return t, c, os.path.getsize(path)


def main():
    ap = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    ap.add_argument("--points", type=int, default=1_000_000)
    ap.add_argument("--build", default=os.path.join(ROOT, "build", "bench"))
    ap.add_argument("--repeat", type=int, default=3, help="best of this many runs")
    a = ap.parse_args()
    exe = build(a.build, "kolvex_bench_pdf")
    pts = points(a.points)
    with tempfile.TemporaryDirectory() as tmp:
        data = os.path.join(tmp, "points.bin")
        with open(data, "wb") as f:
            f.write(b"".join(struct.pack("<dd", x, y) for x, y in pts))

        def ours(*extra, plain=False):
            env = dict(os.environ, KOLVEX_BENCH_PLAIN="1") if plain else None
            r = subprocess.run([exe, data, os.path.join(tmp, "kolvex.pdf"), *extra], capture_output=True,
                               text=True, env=env)
            if r.returncode != 0:
                sys.exit("benchmark program failed: " + r.stderr)
            return json.loads(r.stdout.strip().splitlines()[-1])

        files, memory, plain, theirs = [], [], [], []
        for _ in range(a.repeat):
            files.append(ours())
            memory.append(ours("memory"))
            plain.append(ours(plain=True))
            theirs.append(matplotlib_pdf(pts, os.path.join(tmp, "matplotlib.pdf")))
    t_file = min(o["seconds"] for o in files)
    c_file = min(o["cpu"] for o in files)
    size = files[0]["bytes"]
    t_mpl = min(t[0] for t in theirs)
    c_mpl = min(t[1] for t in theirs)
    s_mpl = theirs[0][2]
    print(f"polyline of {a.points} random points on a DIN A4 page, to PDF (wall clock, processor time)")
    print(f"  kolvex file    {t_file:8.3f} s {c_file:8.3f} s  {size:10d} bytes")
    print(f"  kolvex memory  {min(o['seconds'] for o in memory):8.3f} s {min(o['cpu'] for o in memory):8.3f} s"
          f"  {memory[0]['bytes']:10d} bytes")
    print(f"  kolvex, streams not compressed {min(o['seconds'] for o in plain):8.3f} s"
          f" {min(o['cpu'] for o in plain):8.3f} s  {plain[0]['bytes']:10d} bytes")
    print(f"  matplotlib     {t_mpl:8.3f} s {c_mpl:8.3f} s  {s_mpl:10d} bytes")
    print(f"  speed ratio {t_mpl / t_file:6.1f} wall, {c_mpl / c_file:6.1f} processor (target >= 10)"
          f"    size ratio {size / s_mpl:5.2f} (target <= 1)")
    ok = t_mpl >= 10 * t_file and size <= s_mpl
    print("targets met" if ok else "TARGET MISSED")
    return 0 if ok else 1


if __name__ == "__main__":
    sys.exit(main())
