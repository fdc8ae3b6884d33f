#!/usr/bin/env python3
"""Polygon fill and dashed lines on the raster canvas against Pillow, in one run.

A 10,000-vertex polygon (a wavy ring) is filled solid and hatched on the
default 853 by 603 palette canvas, and a polyline of one million points (a
dense wave across the page) is drawn plain and dashed, through the
library's device layer (a C++ program, built here in Release mode).
Pillow's ImageDraw fills the same polygon and draws the same polyline.

Targets: the solid fill and the plain polyline at least as fast as Pillow,
which does the same work there.  Hatching and dashes have no Pillow
counterpart; their ratios to Pillow's solid work are printed for scale.
The exit status is 1 when a target is missed.

    python3 bench/fill.py [--vertices N] [--points N] [--build DIR]
"""
import argparse
import json
import math
import os
import struct
import subprocess
import sys
import tempfile
import time
from harness import build

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
WIDTH, HEIGHT = 853, 603


def polygon(n):
    out = []
    for i in range(n):
        t = 2 * math.pi * i / n
        r = 270 * (1 + 0.08 * math.sin(37 * t))
        out.append((426 + r * math.cos(t), 301 + r * math.sin(t)))
    return out


def polyline(n):
    return [(1 + 850 * i / (n - 1), 301 + 250 * math.sin(i * 0.0004)) for i in range(n)]


def best(repeat, f):
    t = 1e30
    for _ in range(repeat):
        t0 = time.perf_counter()
        f()
        t = min(t, time.perf_counter() - t0)
    return t


def pillow(poly, line, repeat):
    from PIL import Image, ImageDraw

    im = Image.new("P", (WIDTH, HEIGHT), 0)
    d = ImageDraw.Draw(im)
    return (best(repeat, lambda: d.polygon(poly, fill=200)),
            best(repeat, lambda: d.line(line, fill=200, width=1)))


def main():
    ap = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    ap.add_argument("--vertices", type=int, default=10_000)
    ap.add_argument("--points", type=int, default=1_000_000)
    ap.add_argument("--build", default=os.path.join(ROOT, "build", "bench"))
    ap.add_argument("--repeat", type=int, default=5, help="best of this many runs")
    a = ap.parse_args()
    exe = build(a.build, "kolvex_bench_fill")
    poly, line = polygon(a.vertices), polyline(a.points)
    with tempfile.TemporaryDirectory() as tmp:
        files = []
        for name, pts in (("polygon.bin", poly), ("polyline.bin", line)):
            path = os.path.join(tmp, name)
            with open(path, "wb") as f:
                f.write(b"".join(struct.pack("<dd", x, y) for x, y in pts))
            files.append(path)
        r = subprocess.run([exe, *files, str(a.repeat)], capture_output=True, text=True)
        if r.returncode != 0:
            sys.exit("benchmark program failed: " + r.stderr)
        ours = json.loads(r.stdout.strip().splitlines()[-1])
    p_fill, p_line = pillow(poly, line, a.repeat)
    print(f"polygon of {a.vertices} vertices, polyline of {a.points} points, on {WIDTH}x{HEIGHT}")
    print(f"  solid fill       kolvex {ours['solid']:8.4f} s   Pillow polygon {p_fill:8.4f} s"
          f"   ratio {ours['solid'] / p_fill:5.2f}")
    print(f"  hatched (45 deg) kolvex {ours['hatch']:8.4f} s   (ratio to Pillow's solid fill"
          f" {ours['hatch'] / p_fill:5.2f})")
    print(f"  solid as lines   kolvex {ours['dense']:8.4f} s   (ratio to Pillow's solid fill"
          f" {ours['dense'] / p_fill:5.2f})")
    print(f"  plain polyline   kolvex {ours['line']:8.4f} s   Pillow line    {p_line:8.4f} s"
          f"   ratio {ours['line'] / p_line:5.2f}")
    print(f"  dashed polyline  kolvex {ours['dashed']:8.4f} s   (ratio to Pillow's plain line"
          f" {ours['dashed'] / p_line:5.2f})")
    ok = ours["solid"] <= p_fill and ours["line"] <= p_line
    print("targets met" if ok else "TARGET MISSED")
    return 0 if ok else 1


if __name__ == "__main__":
    sys.exit(main())
