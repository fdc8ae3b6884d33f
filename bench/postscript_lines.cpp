// Times a long polyline through the device layer into a PostScript file.
//
// Usage: kolvex_bench_ps points.bin out.ps
// points.bin holds n pairs of doubles, plot coordinates on the default
// page of 2969 by 2099.  Prints one line of JSON: the seconds from kolini
// to the end of kolfin (wall clock and processor time), and the size of
// the file.
#include <chrono>
#include <ctime>
#include <cstdio>
#include <vector>

#include "bench_io.h"
#include "core/guard.h"
#include "devices/device.h"
#include "glbblk.h"
#include "kolvex.h"

int main(int argc, char **argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s points.bin out.ps\n", argv[0]);
        return 2;
    }
    std::vector<double> xy = bench::read_pairs<double>(argv[1]);
    size_t n = xy.size() / 2;
    if (n < 2) return 2;

    auto t0 = std::chrono::steady_clock::now();
    std::clock_t c0 = std::clock();
    filmod("DELE");
    setfil(argv[2]);
    metafl("PS");
    kolini();
    unit(0);  // no protocol: the output is the timing line
    glbblk *b = qqglbblk(qqcur());
    if (!b || !b->dev.drv) return 1;
    qqmove(b, xy[0], xy[1]);
    for (size_t i = 1; i < n; ++i) qqdraw(b, xy[2 * i], xy[2 * i + 1]);
    qqflsh(b);
    kolfin();
    double t = bench::seconds_since(t0);
    double cpu = (double)(std::clock() - c0) / CLOCKS_PER_SEC;
    FILE *fp = std::fopen(argv[2], "rb");
    long size = -1;
    if (fp && std::fseek(fp, 0, SEEK_END) == 0) size = std::ftell(fp);
    if (fp) std::fclose(fp);
    std::printf("{\"seconds\": %.6f, \"cpu\": %.6f, \"bytes\": %ld}\n", t, cpu, size);
    return 0;
}
