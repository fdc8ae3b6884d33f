"""A 200 by 200 hidden-line surface (surmat) to PNG against matplotlib's
plot_wireframe (mplot3d, Agg) of the same grid in the same run.

plot_wireframe does not remove hidden lines: it draws every line of the
mesh, while surmat walks each line through the floating horizon, so the
two do not do the same work; the ratio is of the time to a finished
picture of the mesh.  Best of three runs each.
Run: KOLVEX_BUILD_DIR=build python bench/hidden_surface.py [n]
"""
import os
import sys
import time

if os.environ.get("KOLVEX_BUILD_DIR"):
    sys.path.insert(0, os.path.abspath(os.environ["KOLVEX_BUILD_DIR"]))

import numpy as np

import kolvex as k

N = int(sys.argv[1]) if len(sys.argv) > 1 else 200
x = np.linspace(-3, 3, N)
X, Y = np.meshgrid(x, x, indexing="ij")
R = np.hypot(X, Y)
Z = np.sin(2 * R) / (1 + R)


def ours(path):
    k.metafl("PNG")
    k.setfil(path)
    k.filmod("DELE")
    k.scrmod("REVERS")
    k.kolini()
    k.errmod("PROT", "OFF")
    k.graf3d(-3, 3, -3, 1, -3, 3, -3, 1, -1, 1, -1, 0.5)
    k.surmat(Z, N, N, 1, 1)
    k.endgrf()
    k.kolfin()


def theirs(path):
    import matplotlib
    matplotlib.use("Agg")
    import matplotlib.pyplot as plt
    fig = plt.figure(figsize=(8.53, 6.03), dpi=100)
    ax = fig.add_subplot(projection="3d")
    ax.plot_wireframe(X, Y, Z, rstride=1, cstride=1, linewidth=0.5, color="k")
    fig.savefig(path)
    plt.close(fig)


def best(fn, path, runs=3):
    times = []
    for _ in range(runs):
        t = time.perf_counter()
        fn(path)
        times.append(time.perf_counter() - t)
    return min(times)


os.makedirs("/tmp/kolvex_bench", exist_ok=True)
theirs("/tmp/kolvex_bench/warmup.png")  # imports and font cache outside the timing
a = best(ours, "/tmp/kolvex_bench/hidden_ours.png")
b = best(theirs, "/tmp/kolvex_bench/wireframe_theirs.png")
print(f"grid {N} x {N}: {2 * N * (N - 1)} mesh segments")
print(f"kolvex   surmat with hidden lines to PNG:       {a:8.3f} s")
print(f"mpl      plot_wireframe, no hidden lines, PNG:  {b:8.3f} s")
print("(plot_wireframe draws every line; it does not remove hidden lines)")
print(f"ratio mpl / kolvex: {b / a:.1f}x")
