// Times a PDF session on a long polyline through the device layer.
//
// Usage: kolvex_bench_pdf points.bin out.pdf [memory]
// points.bin holds n pairs of doubles, plot positions on the default page
// of 2969 by 2099.  The time runs from kolini to kolfin, the file written
// (or, with "memory", the document fetched by pdfbuf).  Prints one line of
// JSON with seconds (wall clock and processor) and bytes.
#include <chrono>
#include <ctime>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "bench_io.h"
#include "core/guard.h"
#include "devices/device.h"
#include "glbblk.h"
#include "kolvex.h"

int main(int argc, char **argv) {
    if (argc < 3) {
        std::fprintf(stderr, "usage: %s points.bin out.pdf [memory]\n", argv[0]);
        return 2;
    }
    bool memory = argc > 3 && std::strcmp(argv[3], "memory") == 0;
    std::vector<double> xy = bench::read_pairs<double>(argv[1]);
    size_t n = xy.size() / 2;
    if (n < 2) return 2;

    filmod("DELE");
    setfil(argv[2]);
    pdfmod(memory ? "ON" : "OFF", "BUFF");
    if (std::getenv("KOLVEX_BENCH_PLAIN")) pdfmod("OFF", "COMP");  // to time the rest alone
    metafl("PDF");
    auto t0 = std::chrono::steady_clock::now();
    std::clock_t c0 = std::clock();
    kolini();
    unit(0);  // no protocol: the output is the timing line
    glbblk *b = qqglbblk(qqcur());
    if (!b || b->core.level == 0) return 1;
    qqmove(b, xy[0], xy[1]);
    for (size_t i = 1; i < n; ++i) qqdraw(b, xy[2 * i], xy[2 * i + 1]);
    qqflsh(b);
    kolfin();
    long bytes = 0;
    if (memory) {
        bytes = pdfbuf(nullptr, 0);
        std::vector<unsigned char> out((size_t)bytes);
        if (pdfbuf(out.data(), (int)bytes) != bytes) return 1;
    }
    double t = bench::seconds_since(t0);
    double cpu = (double)(std::clock() - c0) / CLOCKS_PER_SEC;
    if (!memory) {
        FILE *f = std::fopen(argv[2], "rb");
        if (!f) return 1;
        std::fseek(f, 0, SEEK_END);
        bytes = std::ftell(f);
        std::fclose(f);
    }
    std::printf("{\"seconds\": %.6f, \"cpu\": %.6f, \"bytes\": %ld}\n", t, cpu, bytes);
    return 0;
}
