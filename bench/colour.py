#!/usr/bin/env python3
"""A colour matrix against matplotlib, in one run.

A smooth 2000 by 2000 field with noise is drawn as a heat map with a colour
bar and written to PNG: once with kolvex (graf3, crvmat), once with
matplotlib's pcolormesh and once with its imshow (Agg backend, default
figure).  Every run is a fresh process; its time runs from the first
plotting call to the closed file, the data being made before, and its
memory is the growth of the peak resident size over the size just before
the first plotting call (the peak of the data's temporaries is left
behind by measuring from the resident size there), compared with the 32 MB of the input array.

The vector files of a 1000 by 1000 matrix (SVG, PDF, PostScript) are
written too, and their sizes printed beside those of matplotlib's
pcolormesh.

Targets: kolvex at least 5 times faster than pcolormesh; peak memory at
most twice the input array.

    python3 bench/colour.py [--quick]

The exit status is 1 when a target is missed.
"""
import argparse
import json
import os
import resource
import subprocess
import sys
import tempfile
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))


def field(n):
    import numpy as np

    # Made in blocks of rows, so that no temporary as large as the matrix
    # raises the peak before the measurement starts.
    x = np.linspace(0, 4 * np.pi, n)
    z = np.empty((n, n))
    rng = np.random.default_rng(7)
    for i in range(0, n, 64):
        rows = slice(i, min(i + 64, n))
        z[rows] = np.sin(x[rows])[:, None] * np.cos(0.7 * x)[None, :] + rng.normal(0, 0.05, (z[rows].shape))
    return z


def peak_kb():
    return resource.getrusage(resource.RUSAGE_SELF).ru_maxrss


def resident_kb():
    with open("/proc/self/statm") as f:
        return int(f.read().split()[1]) * os.sysconf("SC_PAGE_SIZE") // 1024


def run_kolvex(n, fmt, path):
    build = os.environ.get("KOLVEX_BUILD_DIR", os.path.join(ROOT, "build"))
    sys.path.insert(0, os.path.abspath(build))
    import kolvex

    z = field(n)
    base = resident_kb()
    t0 = time.perf_counter()
    kolvex.metafl(fmt)
    kolvex.setfil(path)
    kolvex.filmod("DELE")
    kolvex.kolini()
    kolvex.unit(0)
    kolvex.autres(n, n)
    kolvex.axspos(400, 1800)
    kolvex.ax3len(2000, 1500, 1500)
    kolvex.graf3(0.0, 1.0, 0.0, 0.2, 0.0, 1.0, 0.0, 0.2, -1.2, 1.2, -1.2, 0.4)
    kolvex.crvmat(z, n, n, 1, 1)
    kolvex.endgrf()
    kolvex.kolfin()
    return time.perf_counter() - t0, peak_kb() - base


def run_matplotlib(n, kind, fmt, path):
    import matplotlib

    matplotlib.use("Agg")
    import matplotlib.pyplot as plt
    import numpy as np

    z = field(n)
    base = resident_kb()
    t0 = time.perf_counter()
    fig, ax = plt.subplots()
    if kind == "pcolormesh":
        g = np.linspace(0, 1, n + 1)
        m = ax.pcolormesh(g, g, z.T, vmin=-1.2, vmax=1.2)
    else:
        m = ax.imshow(z.T, origin="lower", extent=(0, 1, 0, 1), vmin=-1.2, vmax=1.2)
    fig.colorbar(m)
    fig.savefig(path, format=fmt)
    plt.close(fig)
    return time.perf_counter() - t0, peak_kb() - base


def child(args):
    tool, kind, n, fmt, path = args
    n = int(n)
    if tool == "kolvex":
        t, mem = run_kolvex(n, fmt.upper(), path)
    else:
        t, mem = run_matplotlib(n, kind, fmt, path)
    print(json.dumps({"time": t, "mem": mem, "size": os.path.getsize(path)}))


def measure(tool, kind, n, fmt, tmp):
    path = os.path.join(tmp, f"{tool}_{kind}_{n}.{fmt}")
    out = subprocess.run([sys.executable, __file__, "--child", tool, kind, str(n), fmt, path],
                         capture_output=True, text=True, check=True)
    return json.loads(out.stdout.strip().splitlines()[-1])


def main():
    ap = argparse.ArgumentParser()
    ap.add_argument("--quick", action="store_true", help="500 by 500 instead of 2000 by 2000")
    ap.add_argument("--child", nargs=5, help=argparse.SUPPRESS)
    a = ap.parse_args()
    if a.child:
        child(a.child)
        return 0
    n = 500 if a.quick else 2000
    array_mb = n * n * 8 / 2**20
    ok = True
    with tempfile.TemporaryDirectory() as tmp:
        k = measure("kolvex", "crvmat", n, "png", tmp)
        p = measure("matplotlib", "pcolormesh", n, "png", tmp)
        i = measure("matplotlib", "imshow", n, "png", tmp)
        print(f"{n} x {n} matrix to PNG (input array {array_mb:.1f} MB)")
        print(f"{'':24}{'time s':>9}{'ratio':>8}{'peak +MB':>10}{'file KB':>10}")
        for name, r in (("kolvex crvmat", k), ("matplotlib pcolormesh", p), ("matplotlib imshow", i)):
            print(f"{name:24}{r['time']:9.3f}{r['time'] / k['time']:8.2f}{r['mem'] / 1024:10.1f}"
                  f"{r['size'] / 1024:10.1f}")
        speed = p["time"] / k["time"]
        mem = k["mem"] / 1024 / array_mb
        print(f"pcolormesh / crvmat time: {speed:.1f} (target >= 5); "
              f"crvmat peak growth / input: {mem:.2f} (target <= 2)")
        ok = speed >= 5 and mem <= 2
        nv = 250 if a.quick else 1000
        print(f"\n{nv} x {nv} matrix to vector files (KB)")
        print(f"{'':10}{'kolvex':>10}{'pcolormesh':>12}")
        for fmt in ("svg", "pdf", "ps"):
            kv = measure("kolvex", "crvmat", nv, fmt, tmp)
            mv = measure("matplotlib", "pcolormesh", nv, fmt, tmp)
            print(f"{fmt:10}{kv['size'] / 1024:10.0f}{mv['size'] / 1024:12.0f}")
    return 0 if ok else 1


if __name__ == "__main__":
    sys.exit(main())
