// The native metafile as bytes, and the line writer of the text formats.
#include <cstdio>
#include <string>
#include <unistd.h>

#include "core/guard.h"
#include "devices/device.h"
#include "glbblk.h"
#include "kolvex.h"
#include "testkit.h"

namespace {

glbblk *metafile_session(const char *name) {
    static std::string dir = testkit::temp_dir();
    if (chdir(dir.c_str()) != 0) return nullptr;
    filmod("DELE");
    setfil(name);
    metafl("PLOG");
    kolini();
    glbblk *b = qqglbblk(qqcur());
    b->diag.outu = 0;
    return b;
}

}  // namespace

TEST(metafile_bytes_of_a_small_session) {
    glbblk *b = metafile_session("small.met");
    setclr(0);   // index 0 is written as 256 = 2 * 89 + 78
    setclr(89);  // one field: 98
    setclr(90);  // 89 + 1: "99" and 10
    pagera();
    qqmove(b, 0, 0);  // a lone move, then a draw in the same state
    qqflsh(b);
    qqmove(b, 2969, 0);
    qqdraw(b, 2969, 2099);
    newpag();  // no pages in this format
    kolfin();
    // The session starts in the foreground colour 255 = 2 * 89 + 77.
    const std::string expect =
        "      29.7      21.0\n"
        "99.000000099.000000086.000000099.000000099.000000087.000000098.000000099.0000000\n"
        "10.0000000 0.0000000 0.7069720 3.0000000 0.0000000 0.0000000 2.0000000 1.0000000\n"
        " 0.0000000 1.0000000 0.7069720 0.0000000 0.7069720 0.0000000 0.7069720 3.0000000\n"
        " 1.0000000 0.7069720 1.0000000 0.0000000 2.0000000 9.0000000\n";
    CHECK(testkit::read_file("small.met") == expect);
    if (testkit::read_file("small.met") != expect)
        std::fprintf(stderr, "%s", testkit::read_file("small.met").c_str());
}

TEST(metafile_of_an_empty_session_has_no_coordinates) {
    metafile_session("empty.met");
    kolfin();
    CHECK(testkit::read_file("empty.met") ==
          "      29.7      21.0\n99.000000099.000000086.0000000 9.0000000\n");
}

TEST(line_writer_fills_80_columns_and_never_splits_an_item) {
    glbblk *b = metafile_session("lines.met");
    b->sess.lnpos = 0;  // drop the opening colour from the line
    for (int i = 0; i < 9; ++i) qqsbuf(b, "0123456789", 10);  // 8 fit, the 9th starts a line
    qqsbuf(b, "abcdefghijklmnopqrstuvwxyz", 26);
    qqsbuf(b, std::string(60, 'x').c_str(), 60);  // does not fit behind 36: a new line
    qqsbuf(b, std::string(81, 'y').c_str(), 81);  // longer than a line: dropped with warning 176
    CHECK_EQ(b->diag.nwarn, 1);
    kolfin();
    std::string line1;
    for (int i = 0; i < 8; ++i) line1 += "0123456789";
    const std::string expect = "      29.7      21.0\n" + line1 +
                               "\n0123456789abcdefghijklmnopqrstuvwxyz\n" + std::string(60, 'x') +
                               "\n 9.0000000\n";
    CHECK(testkit::read_file("lines.met") == expect);
}
