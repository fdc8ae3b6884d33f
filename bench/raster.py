#!/usr/bin/env python3
"""Raster device against Pillow, in one run.

Draws the same polyline of random points (one million by default) on the
default 853 by 603 palette canvas, once through the library's device layer
(a C++ program, built here in Release mode) and once with Pillow's
ImageDraw, then writes the PNG with each.  The library's PNG writer is also
set against zlib's own deflate of the same pixels.

Targets: lines at least as fast as Pillow; the PNG writer within 1.5 times
zlib's deflate.  The exit status is 1 when a target is missed.

    python3 bench/raster.py [--points N] [--build DIR]
"""
import argparse
import json
import os
import subprocess
import sys
import tempfile
import time
from harness import build

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
WIDTH, HEIGHT = 853, 603


def points(n, seed=1):
    import random

    rnd = random.Random(seed)
    return [(rnd.randrange(WIDTH), rnd.randrange(HEIGHT)) for _ in range(n)]


def pillow(pts, path):
    from PIL import Image, ImageDraw

    im = Image.new("P", (WIDTH, HEIGHT), 0)
    im.putpalette([v for i in range(256) for v in (i, 255 - i, i // 2)])
    t0 = time.perf_counter()
    ImageDraw.Draw(im).line(pts, fill=200, width=1)
    t_lines = time.perf_counter() - t0
    t0 = time.perf_counter()
    im.save(path)
    t_png = time.perf_counter() - t0
    return t_lines, t_png


def main():
    ap = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    ap.add_argument("--points", type=int, default=1_000_000)
    ap.add_argument("--build", default=os.path.join(ROOT, "build", "bench"))
    ap.add_argument("--repeat", type=int, default=3, help="best of this many runs")
    a = ap.parse_args()
    exe = build(a.build, "kolvex_bench_raster")
    pts = points(a.points)
    with tempfile.TemporaryDirectory() as tmp:
        data = os.path.join(tmp, "points.bin")
        import struct

        with open(data, "wb") as f:
            f.write(b"".join(struct.pack("<ii", x, y) for x, y in pts))
        ours, theirs = [], []
        for _ in range(a.repeat):
            r = subprocess.run([exe, data, os.path.join(tmp, "kolvex.png")], capture_output=True, text=True)
            if r.returncode != 0:
                sys.exit("benchmark program failed: " + r.stderr)
            ours.append(json.loads(r.stdout.strip().splitlines()[-1]))
            theirs.append(pillow(pts, os.path.join(tmp, "pillow.png")))
    lines = min(o["lines"] for o in ours)
    png = min(o["png"] for o in ours)
    zlib_t = min(o["zlib"] for o in ours)
    p_lines = min(t[0] for t in theirs)
    p_png = min(t[1] for t in theirs)
    print(f"polyline of {a.points} points on {WIDTH}x{HEIGHT}")
    print(f"  kolvex lines  {lines:8.3f} s    Pillow lines {p_lines:8.3f} s    ratio {lines / p_lines:5.2f}")
    print(f"  kolvex PNG    {png:8.3f} s    Pillow PNG   {p_png:8.3f} s    zlib deflate {zlib_t:8.3f} s"
          f"    PNG/deflate {png / zlib_t:5.2f}")
    ok = lines <= p_lines and png <= 1.5 * zlib_t
    print("targets met" if ok else "TARGET MISSED")
    return 0 if ok else 1


if __name__ == "__main__":
    sys.exit(main())
