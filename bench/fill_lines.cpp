// Times the polygon fill and the dashed line engine on the raster device.
//
// Usage: kolvex_bench_fill polygon.bin polyline.bin repeat
// Both files hold pairs of doubles, pixel positions on the default 853 by
// 603 palette canvas.  Prints one line of JSON with the best seconds of
// `repeat` runs: a solid fill, two hatched fills (a 45 degree pattern and
// the solid pattern drawn as lines), and the polyline plain and dashed.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "bench_io.h"
#include "core/guard.h"
#include "devices/device.h"
#include "glbblk.h"
#include "kolvex.h"
#include "raster/canvas.h"
#include "raster/primitives.h"

namespace {

template <class F>
double best(int repeat, F f) {
    double t = 1e30;
    for (int k = 0; k < repeat; ++k) {
        auto t0 = std::chrono::steady_clock::now();
        f();
        double s = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
        if (s < t) t = s;
    }
    return t;
}

}  // namespace

int main(int argc, char **argv) {
    if (argc != 4) {
        std::fprintf(stderr, "usage: %s polygon.bin polyline.bin repeat\n", argv[0]);
        return 2;
    }
    std::vector<double> poly = bench::read_pairs<double>(argv[1]), line = bench::read_pairs<double>(argv[2]);
    int repeat = std::atoi(argv[3]);
    if (poly.size() < 6 || line.size() < 4 || repeat < 1) return 2;
    metafl("VIRT");
    kolini();
    unit(0);
    glbblk *b = qqglbblk(qqcur());
    if (!b || !qqcanvasof(b)) return 1;
    double s = b->sess.devscl;
    // The polygon as areaf takes it, in plot coordinates.
    int n = (int)(poly.size() / 2);
    std::vector<int> nx(n), ny(n);
    for (int i = 0; i < n; ++i) {
        nx[i] = (int)(poly[2 * i] / s + 0.5);
        ny[i] = (int)(poly[2 * i + 1] / s + 0.5);
    }
    size_t m = line.size() / 2;
    std::vector<double> lx(m), ly(m);
    for (size_t i = 0; i < m; ++i) {
        lx[i] = line[2 * i] / s;
        ly[i] = line[2 * i + 1] / s;
    }
    setclr(200);
    noarln();
    auto fill = [&] {
        areaf(nx.data(), ny.data(), n);
        qqcflush(qqcanvasof(b));
    };
    shdpat(16);
    double t_solid = best(repeat, fill);
    shdpat(1);
    double t_hatch = best(repeat, fill);
    shdpat(16);
    hwmode("OFF", "SHAD");
    double t_dense = best(repeat, fill);
    auto draw = [&] {
        qqmove(b, lx[0], ly[0]);
        for (size_t i = 1; i < m; ++i) qqdraw(b, lx[i], ly[i]);
        qqflsh(b);
        qqcflush(qqcanvasof(b));
    };
    double t_line = best(repeat, draw);
    dash();
    double t_dash = best(repeat, draw);
    kolfin();
    std::printf(
        "{\"vertices\": %d, \"points\": %zu, \"solid\": %.6f, \"hatch\": %.6f, \"dense\": %.6f, "
        "\"line\": %.6f, \"dashed\": %.6f}\n",
        n, m, t_solid, t_hatch, t_dense, t_line, t_dash);
    return 0;
}
