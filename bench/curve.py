#!/usr/bin/env python3
"""Curves against matplotlib, in one run.

Each case draws random points (x sorted in [0, 1], y uniform in [0, 1]) as
one curve in an axis system and writes the file, once with kolvex and once
with matplotlib (Agg backend, default line style, default figure).  Every
run is a fresh process, so that its peak memory (resource.getrusage) is its
own; the time is taken from the first plotting call to the closed file,
the data being made before.

Cases and targets (matplotlib time / kolvex time):
    line 1e6 to PNG            at least 20
    line 1e7 to PNG            at least 20
    line 1e6 to SVG            at least 10, and a file no larger
    symbols 1e5 to PNG         at least 10

    python3 bench/curve.py [--quick]

matplotlib refuses a path of ten million random points with its default
settings ("Exceeded cell block limit"); for that case it runs with
agg.path.chunksize = 10000, the setting its documentation gives for such
data.  The exit status is 1 when a target is missed.
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


def data(n):
    import numpy as np

    rng = np.random.default_rng(12345)
    return np.sort(rng.uniform(0, 1, n)), rng.uniform(0, 1, n)


def run_kolvex(case, n, path):
    build = os.environ.get("KOLVEX_BUILD_DIR", os.path.join(ROOT, "build"))
    sys.path.insert(0, os.path.abspath(build))
    import kolvex

    x, y = data(n)
    t0 = time.perf_counter()
    kolvex.metafl("SVG" if case == "svg" else "PNG")
    kolvex.setfil(path)
    kolvex.filmod("DELE")
    kolvex.kolini()
    kolvex.unit(0)
    kolvex.graf(0.0, 1.0, 0.0, 0.2, 0.0, 1.0, 0.0, 0.2)
    if case == "symbols":
        kolvex.incmrk(-1)
        kolvex.marker(21)
        kolvex.hsymbl(20)
    kolvex.curve(x, y, n)
    kolvex.endgrf()
    kolvex.kolfin()
    return time.perf_counter() - t0


def run_matplotlib(case, n, path):
    import matplotlib

    matplotlib.use("Agg")
    import matplotlib.pyplot as plt

    if n >= 10_000_000:
        matplotlib.rcParams["agg.path.chunksize"] = 10000
    x, y = data(n)
    t0 = time.perf_counter()
    fig, ax = plt.subplots()
    if case == "symbols":
        ax.plot(x, y, "o", markersize=3)
    else:
        ax.plot(x, y)
    fig.savefig(path)
    plt.close(fig)
    return time.perf_counter() - t0


def child(lib, case, n, path):
    fn = run_kolvex if lib == "kolvex" else run_matplotlib
    seconds = fn(case, n, path)
    peak = resource.getrusage(resource.RUSAGE_SELF).ru_maxrss / 1024.0
    print(json.dumps({"time": seconds, "peak_mb": peak, "size": os.path.getsize(path)}))


def measure(lib, case, n, tmp):
    ext = "svg" if case == "svg" else "png"
    path = os.path.join(tmp, f"{lib}_{case}_{n}.{ext}")
    out = subprocess.run([sys.executable, os.path.abspath(__file__), "--child", lib, case, str(n), path],
                         capture_output=True, text=True)
    for line in reversed(out.stdout.splitlines()):
        if line.startswith("{"):
            return json.loads(line)
    raise SystemExit(f"{lib} {case} {n} failed:\n{out.stderr[-2000:]}")


def main():
    ap = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    ap.add_argument("--quick", action="store_true", help="skip the ten million points")
    ap.add_argument("--child", nargs=4, help=argparse.SUPPRESS)
    args = ap.parse_args()
    if args.child:
        lib, case, n, path = args.child
        child(lib, case, int(n), path)
        return 0
    cases = [("line", 1_000_000, 20), ("line", 10_000_000, 20), ("svg", 1_000_000, 10),
             ("symbols", 100_000, 10)]
    if args.quick:
        cases = [c for c in cases if c[1] < 10_000_000]
    failed = False
    print(f"{'case':<22}{'kolvex s':>10}{'mpl s':>10}{'ratio':>8}{'target':>8}"
          f"{'kolvex MB':>11}{'mpl MB':>9}{'kolvex KB':>11}{'mpl KB':>9}")
    with tempfile.TemporaryDirectory() as tmp:
        for case, n, target in cases:
            k = measure("kolvex", case, n, tmp)
            m = measure("matplotlib", case, n, tmp)
            ratio = m["time"] / k["time"]
            ok = ratio >= target and (case != "svg" or k["size"] <= m["size"])
            failed |= not ok
            name = f"{case} {n:.0e}".replace("+0", "")
            print(f"{name:<22}{k['time']:>10.3f}{m['time']:>10.3f}{ratio:>8.1f}{target:>8}"
                  f"{k['peak_mb']:>11.0f}{m['peak_mb']:>9.0f}{k['size'] / 1024:>11.0f}"
                  f"{m['size'] / 1024:>9.0f}{'' if ok else '  MISSED'}")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
