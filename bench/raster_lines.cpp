// Times the raster device on a long random polyline and on writing the
// default PNG, with zlib's own deflate of the same pixels as the yardstick.
//
// Usage: kolvex_bench_raster points.bin out.png
// points.bin holds n pairs of 32-bit integers, pixel positions on the
// default 853 by 603 canvas.  Prints one line of JSON with seconds.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>
#include <zlib.h>

#include "bench_io.h"
#include "core/guard.h"
#include "devices/device.h"
#include "glbblk.h"
#include "kolvex.h"
#include "raster/canvas.h"
#include "raster/primitives.h"
#include "raster/writers.h"

using bench::seconds_since;

int main(int argc, char **argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s points.bin out.png\n", argv[0]);
        return 2;
    }
    std::vector<int> xy = bench::read_pairs<int>(argv[1]);
    size_t n = xy.size() / 2;
    if (n < 2) return 2;

    filmod("DELE");
    setfil(argv[2]);
    metafl("PNG");
    kolini();
    unit(0);  // no protocol: the output is the timing line
    glbblk *b = qqglbblk(qqcur());
    if (!b || !qqcanvasof(b)) return 1;
    // Plot positions that land exactly on the given pixels.
    double s = b->sess.devscl;
    std::vector<double> px(n), py(n);
    for (size_t i = 0; i < n; ++i) {
        px[i] = xy[2 * i] / s;
        py[i] = xy[2 * i + 1] / s;
    }
    setclr(200);

    auto t0 = std::chrono::steady_clock::now();
    qqmove(b, px[0], py[0]);
    for (size_t i = 1; i < n; ++i) qqdraw(b, px[i], py[i]);
    qqflsh(b);
    qqcflush(qqcanvasof(b));
    double t_lines = seconds_since(t0);

    // The bytes that the PNG writer compresses: each row behind a filter byte.
    const qqcanvas *cv = qqcanvasof(b);
    std::vector<unsigned char> raw((size_t)(cv->cw + 1) * cv->ch);
    for (int y = 0; y < cv->ch; ++y) {
        raw[(size_t)y * (cv->cw + 1)] = 0;
        qqcgetrow(cv, 0, y, cv->cw, 0, &raw[(size_t)y * (cv->cw + 1) + 1]);
    }
    std::vector<unsigned char> out(compressBound((uLong)raw.size()));
    t0 = std::chrono::steady_clock::now();
    uLongf outlen = (uLongf)out.size();
    compress2(out.data(), &outlen, raw.data(), (uLong)raw.size(), Z_DEFAULT_COMPRESSION);
    double t_zlib = seconds_since(t0);

    t0 = std::chrono::steady_clock::now();
    int r = qqwrite(b, b->sess.fhnd, b->sess.fname, QQ_WPNG);
    std::fflush(b->sess.fhnd);
    double t_png = seconds_since(t0);

    // The session must not write the file a second time.
    std::fclose(b->sess.fhnd);
    b->sess.fhnd = nullptr;
    kolfin();
    std::printf(
        "{\"points\": %zu, \"lines\": %.6f, \"png\": %.6f, \"zlib\": %.6f, \"result\": %d}\n", n,
        t_lines, t_png, t_zlib, r);
    return r == 0 ? 0 : 1;
}
