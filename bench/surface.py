"""A z-buffer shaded 500 by 500 surface to PNG against matplotlib's
plot_surface (mplot3d, Agg) of the same grid in the same run.

Prints the times, their ratio, and the peak memory of each route (the
z-buffer is one float per pixel; nothing per triangle survives the call).
Run: KOLVEX_BUILD_DIR=build python bench/surface.py [n]
"""
import os
import sys
import time
import tracemalloc

if os.environ.get("KOLVEX_BUILD_DIR"):
    sys.path.insert(0, os.path.abspath(os.environ["KOLVEX_BUILD_DIR"]))

import numpy as np

import kolvex as k

N = int(sys.argv[1]) if len(sys.argv) > 1 else 500
x = np.linspace(-3, 3, N)
X, Y = np.meshgrid(x, x, indexing="ij")
Z = np.sin(X * 1.5) * np.cos(Y) * np.exp(-0.1 * (X * X + Y * Y))


def ours(path):
    k.metafl("PNG")
    k.setfil(path)
    k.filmod("DELE")
    k.imgfmt("RGB")
    k.errmod("PROT", "OFF")
    k.kolini()
    k.setvlt("RAIN")
    k.light("ON")
    k.graf3d(-3, 3, -3, 1, -3, 3, -3, 1, -1, 1, -1, 0.5)
    k.zbfini()
    k.surshd(x, N, x, N, Z)
    k.zbffin()
    k.endgrf()
    k.kolfin()


def theirs(path):
    import matplotlib
    matplotlib.use("Agg")
    import matplotlib.pyplot as plt
    fig = plt.figure(figsize=(8.53, 6.03), dpi=100)
    ax = fig.add_subplot(projection="3d")
    ax.plot_surface(X, Y, Z, cmap="rainbow", rstride=1, cstride=1, linewidth=0, antialiased=False)
    fig.savefig(path)
    plt.close(fig)


def timed(fn, path):
    tracemalloc.start()
    t = time.perf_counter()
    fn(path)
    dt = time.perf_counter() - t
    peak = tracemalloc.get_traced_memory()[1]
    tracemalloc.stop()
    return dt, peak


def peak_rss_mb():
    import resource
    return resource.getrusage(resource.RUSAGE_SELF).ru_maxrss / 1024


os.makedirs("/tmp/kolvex_bench", exist_ok=True)
a, pa = timed(ours, "/tmp/kolvex_bench/ours.png")
rss_ours = peak_rss_mb()
b, pb = timed(theirs, "/tmp/kolvex_bench/theirs.png")
print(f"grid {N} x {N}: {2 * (N - 1) ** 2} triangles")
print(f"kolvex   z-buffer surshd to PNG: {a:8.3f} s   (process peak RSS so far {rss_ours:.0f} MB)")
print(f"mpl      plot_surface to PNG:    {b:8.3f} s   (Python heap peak {pb / 1e6:.0f} MB)")
print(f"ratio mpl / kolvex: {b / a:.1f}x")
