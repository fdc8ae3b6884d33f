// The core's internals: text helpers, keywords, the device and page
// tables, the coordinate check and the banner, reset rows, the data
// directory.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include "core/guard.h"
#include "core/keywords.h"
#include "core/session.h"
#include "core/subsystems.h"
#include "core/text.h"
#include "core/warnings.h"
#include "glbblk.h"
#include "kolvex.h"
#include "testkit.h"

namespace {

std::string icha(int v, int width, int zero, int size = 41) {
    char buf[64];
    qqicha(v, buf, size, width, zero);
    return buf;
}

std::string fcha(double v, int dec, int width, int size = 41) {
    char buf[128];
    qqfcha(v, dec, buf, size, width);
    return buf;
}

// A block at level 0 with its warnings silenced.
glbblk *quiet_block() {
    getlev();
    glbblk *b = qqglbblk(qqcur());
    b->diag.outu = 0;
    return b;
}

}  // namespace

TEST(text_copy_and_append_stop_at_their_limits) {
    char dest[8];
    std::memset(dest, 'z', sizeof dest);
    CHECK_EQ(qqscpy(dest, "ABCDE", 4), 4);
    CHECK(std::strcmp(dest, "ABCD") == 0);
    CHECK_EQ(dest[5], 'z');
    char buf[16] = "ab";
    CHECK_EQ(qqscat(buf, "cdefgh", 5), 5);
    CHECK(std::strcmp(buf, "abcde") == 0);
    char line[41] = "";
    qqiapp(line, -12, 40);
    qqfapp(line, 2.5, 0, 40);
    qqiapp(line, 7, 40);
    CHECK(std::strcmp(line, "-12 3. 7") == 0);
    char up[] = "abz-ÄxY";
    qqupc(up);
    CHECK(std::strcmp(up, "ABZ-ÄXY") == 0);
}

TEST(integers_as_text) {
    CHECK(icha(42, 0, 0) == "42");
    CHECK(icha(-42, 5, 0) == "  -42");
    CHECK(icha(7, 4, 1) == "0007");
    CHECK(icha(-5, 4, 1) == "00-5");  // padding stands in front of the sign
    CHECK(icha(-2147483647 - 1, 0, 0) == "-2147483648");
    CHECK(icha(123456, 10, 0, 6) == "    1");  // never beyond size - 1
    CHECK(icha(0, 0, 0) == "0");
}

TEST(doubles_as_text) {
    CHECK(fcha(2.5, 0, 0) == "3.");
    CHECK(fcha(0.004, 2, 0) == "0.00");
    CHECK(fcha(-0.004, 2, 0) == "0.00");
    CHECK(fcha(-0.004, 2, 6) == " -0.00");  // with a width the sign stays
    CHECK(fcha(12.345, 2, 0) == "12.35");
    CHECK(fcha(-12.345, 1, 8) == "   -12.3");
    CHECK(fcha(0.05, 3, 0) == "0.050");
    CHECK(fcha(1234.5, -1, 0) == "1235");
    CHECK(fcha(-7.0, 0, 5) == "  -7.");
    std::string big = fcha(1e30, 0, 0);  // digits by repeated division: 31 and the point
    CHECK_EQ(big.size(), 32u);
    CHECK(big.compare(0, 10, "1000000000") == 0 && big.back() == '.');
    CHECK_EQ(fcha(1e300, 2, 0, 128).size(), 100u + 1);  // at most 100 digits
    CHECK(fcha(123.456, 2, 0, 4) == "123");             // cut at size - 1
    CHECK(fcha(NAN, 2, 0).size() > 0);
}

TEST(rounding_and_tokens) {
    CHECK_EQ(qqround(-1.3), 0);
    CHECK_EQ(qqround(-1.7), -1);
    CHECK_EQ(qqround(2.5), 3);
    CHECK_EQ(qqround(3e9), -2147483647 - 1);
    CHECK_EQ(qqround(NAN), -2147483647 - 1);
    CHECK_EQ(qqnint(-1.5), -2);
    CHECK_EQ(qqnint(1.5), 2);
    CHECK_EQ(qqntok("  12 -34\\t+5x6", 1), 12);
    CHECK_EQ(qqntok("  12 -34\t+5x6", 2), -34);
    CHECK_EQ(qqntok("  12 -34\t+5x6", 3), 56);
    CHECK_EQ(qqntok("  12", 4), 0);
}

TEST(keyword_matcher) {
    glbblk *b = quiet_block();
    int before = b->diag.nwarn;
    CHECK_EQ(qqkey(b, "OFF +ON  ", 2, "off"), 1);
    CHECK_EQ(qqkey(b, "OFF +ON  ", 2, "Offset"), 1);
    CHECK_EQ(qqkey(b, "OFF +ON  ", 2, "on"), 2);
    CHECK_EQ(qqkey(b, "CM  +INCH+POIN+TWIP", 4, "inches"), 2);
    CHECK_EQ(b->diag.nwarn, before);
    CHECK_EQ(qqkey(b, "OFF +ON  ", 2, ""), 0);
    CHECK_EQ(qqkey(b, "OFF +ON  ", 2, "OF"), 0);
    CHECK_EQ(b->diag.nwarn, before + 2);
    CHECK_EQ(qqkey(b, "A   +    ", 2, ""), 2);  // four blanks take the empty word
    CHECK_EQ(qqchki(b, 0, 1, 0), 1);            // 1 or more, no upper limit
    CHECK_EQ(qqchki(b, 99999, 1, 0), 0);
    CHECK_EQ(qqchki(b, 6, 2, 5), 1);
    CHECK_EQ(qqchki(b, 5, 2, 5), 0);
}

TEST(device_keywords_and_codes) {
    glbblk *b = quiet_block();
    struct {
        const char *word;
        int code;
        const char *key;
    } rows[] = {{"png", 604, "PNG "}, {"xwi3", 74, "XWI3"},     {"XWIN", 72, "XWIN"},
                {"cons", 80, "CONS"}, {"MET1", 80, "MET1"},     {"met9", 80, "MET9"},
                {"PS", 504, "PS  "},  {"PSCL", 502, "PSCL"},    {"java", 701, "JAVA"},
                {"gl", 80, "GL  "},   {"Plogfile", 201, "PLOG"}};
    for (const auto &r : rows) {
        metafl(r.word);
        CHECK_EQ(b->core.devcod, r.code);
        CHECK(std::strcmp(b->sess.devkey, r.key) == 0);
    }
    int before = b->diag.nwarn;
    metafl("MET0");
    metafl("XWI9");
    CHECK_EQ(b->diag.nwarn, before + 2);
    CHECK(std::strcmp(b->sess.devkey, "PLOG") == 0);
    // setpag chooses the metafile only while metafl was never called.
    delglb();
    b = quiet_block();
    setpag("DA3P");
    CHECK_EQ(b->core.devcod, 201);
    CHECK_EQ(b->core.pagw, 2969.0);
    CHECK_EQ(b->core.pagh, 4199.0);
    metafl("png");
    setpag("DA4L");
    CHECK_EQ(b->core.devcod, 604);
    delglb();
}

TEST(kolini_derives_page_axes_window_and_background) {
    std::string dir = testkit::temp_dir();
    if (chdir(dir.c_str()) != 0) return;
    glbblk *b = quiet_block();
    units("INCH");
    kolini();
    CHECK_EQ(b->core.nxp, 1169);
    CHECK_EQ(b->core.nyp, 826);
    CHECK_EQ(b->sess.axdefl[0], 780);  // round(1170 * 2 / 3)
    CHECK_EQ(b->sess.axdefl[1], 551);
    CHECK_EQ(b->sess.axdefp[0], (1169 - 780) / 2);
    CHECK_EQ(b->sess.axdefp[1], 826 - 118);  // round(300 / 2.54)
    CHECK_EQ(b->sess.wsiz[0], 853);
    CHECK_EQ(b->sess.wsiz[1], 603);
    CHECK_EQ(b->sess.pageno, 1);
    CHECK_NEAR(b->sess.devscl, 1.0 / 1169, 1e-15);
    b->diag.outu = 0;
    kolfin();
    units("CM");
    setpag("DA4P");
    kolini();
    CHECK_EQ(b->sess.wsiz[0], 603);
    CHECK_EQ(b->sess.wsiz[1], 853);
    b->diag.outu = 0;
    kolfin();
    window(10, 20, 400, 300);
    kolini();
    CHECK_EQ(b->sess.wpos[0], 10);
    CHECK_EQ(b->sess.wsiz[1], 300);
    b->diag.outu = 0;
    kolfin();
    winsiz(500, 200);
    kolini();
    CHECK_EQ(b->sess.wpos[0], 0);
    CHECK_EQ(b->sess.wsiz[0], 500);
    reset("WINSIZ");
    CHECK_EQ(b->sess.wplace, 0);
    b->diag.outu = 0;
    kolfin();
    // The background by device: white for the page-description formats.
    b->diag.outu = 0;
    metafl("PS");
    kolini();
    CHECK_EQ(b->sess.bgmode, 2);
    b->diag.outu = 0;
    kolfin();
    metafl("PSCL");
    kolini();
    CHECK_EQ(b->sess.bgmode, 0);
    b->diag.outu = 0;
    kolfin();
    scrmod("REVERS");
    kolini();
    CHECK_EQ(b->sess.bgmode, 2);
    b->diag.outu = 0;
    kolfin();
    CHECK_EQ(b->sess.bgprev, 0);  // what the first session took stays
    delglb();
}

// The core knows only its own part of the record: the size of the whole
// comes from the library's top, and a block it makes must hold every layer.
TEST(blocks_are_made_in_the_size_of_the_whole_record) {
    CHECK_EQ(qqblocksize(), sizeof(glbblk));
    glbblk *b = qqglbblk(qqfree("getlev"));
    CHECK(b != nullptr);
    CHECK(qqspcblk(b) == b);
    CHECK(&qqspcblk(b)->sp == &b->sp);
}

TEST(reset_rows_use_only_reset_names) {
    CHECK_EQ(qqresetcount(), 133);
    int n = 0;
    const Subsystem *const *subs = qqsubsystems(&n);
    int rows = 0;
    for (int i = 0; i < n; ++i)
        for (const ResetEntry *r = subs[i]->resets; r && r->name; ++r, ++rows)
            if (!qqresetname(r->name))
                testkit::fail(__FILE__, __LINE__, std::string("unknown row ") + r->name);
    CHECK(rows >= 10);
    CHECK(qqresetname("ALL"));
    CHECK(!qqresetname("ALL "));
}

TEST(reset_all_restores_the_session_defaults) {
    testkit::RecordingDriver rec;
    glbblk *b = testkit::recording_session(rec);
    clpwin(10, 10, 100, 100);
    nochek();
    lnjoin("ROUN");
    color("RED");
    int fore = 0;
    reset("COLOR");
    fore = b->clr.curclr;
    color("RED");
    reset("ALL");
    CHECK_EQ(b->dev.clpx2, b->core.nxp);
    CHECK_EQ(b->diag.chkon, 1);
    CHECK_EQ(b->dev.lnjn, 2);
    CHECK_EQ(b->clr.curclr, fore);
    CHECK_EQ(b->core.level, 1u);
    testkit::end_session(b);
}

TEST(coordinate_check_counts_and_reports) {
    std::string dir = testkit::temp_dir();
    if (chdir(dir.c_str()) != 0) return;
    glbblk *b = quiet_block();
    kolini();
    DiagState &d = b->diag;
    AxesState &a = b->ax;  // the axis systems own the limits
    a.chkaxis = 1;
    a.chkx[0] = 0;
    a.chkx[1] = 10;
    a.chky[0] = 5;  // limits may run either way
    a.chky[1] = -5;
    a.chkz[0] = 0;
    a.chkz[1] = 1;
    std::FILE *log = std::tmpfile();
    d.errfp = log;
    d.outu = 6;
    qqscpy(b->core.rtnam, "curve", 8);
    const double x[5] = {1, 11, NAN, -1, 5}, y[5] = {0, 0, 1, 2, 1e10};
    qqchkd(b, x, y, 5);
    CHECK_EQ(d.nout, 3);
    CHECK_EQ(d.nnan, 0);  // NaN counts only with nancrv
    nancrv("ON");
    qqchkd(b, x, y, 5);
    CHECK_EQ(d.nnan, 1);
    CHECK_EQ(d.nwarn, 0);  // protocol lines are not warnings
    const double z[2] = {0.5, 2}, xx[2] = {1, 1}, yy[2] = {1, 1};
    qqscpy(b->core.rtnam, "curve3", 8);
    qqchk3(b, xx, yy, z, 2);
    CHECK_EQ(d.nout, 7);
    // Switched off: no lines, no counting of the range; NaN still counted.
    nochek();
    qqchkd(b, x, y, 5);
    CHECK_EQ(d.nout, 7);
    CHECK_EQ(d.nnan, 2);
    std::rewind(log);
    char text[4096] = "";
    size_t n = std::fread(text, 1, sizeof text - 1, log);
    text[n] = '\0';
    std::fclose(log);
    d.errfp = nullptr;
    const char *first =
        " <<<< (  1.1000e+01 /  0.0000e+00) out of axis scaling in curve!\n"
        " <<<< ( -1.0000e+00 /  2.0000e+00) out of axis scaling in curve!\n"
        " <<<< (  5.0000e+00 /  1.0000e+10) out of axis scaling in curve!\n";
    CHECK(std::strncmp(text, first, std::strlen(first)) == 0);
    CHECK(std::strstr(
        text, " <<<< (  1.0000e+00 /  1.0000e+00 /  2.0000e+00) out of axis scaling in curve3!\n"));
    // A polar system is not checked; grafr only for x below 0.
    nochek();
    d.chkon = 1;
    a.chkaxis = 3;
    qqchkd(b, x, y, 5);
    CHECK_EQ(d.nout, 7);
    a.chkaxis = 2;
    d.outu = 0;
    qqchkd(b, x, y, 5);
    CHECK_EQ(d.nout, 7);  // output off: no check
    d.outu = 6;
    d.errfp = std::fopen("/dev/null", "w");
    qqchkd(b, x, y, 5);
    CHECK_EQ(d.nout, 8);
    std::fclose(d.errfp);
    d.errfp = nullptr;
    // The banner shows the NaN line: five NaN points met with nancrv on.
    CHECK_EQ(d.nnan, 5);
    char banner[700];
    qqbanner(b, 1, banner, sizeof banner);
    CHECK(std::strstr(banner, ("\n <<  NaN     : 5" + std::string(47, ' ') + "  <<\n").c_str()));
    a.chkaxis = 0;
    d.outu = 0;
    kolfin();
}

TEST(banner_lines_by_flag) {
    std::string dir = testkit::temp_dir();
    if (chdir(dir.c_str()) != 0) return;
    glbblk *b = quiet_block();
    kolini();
    qqscpy(b->diag.errnam, "errors.log", 256);
    qqscpy(b->sess.fname, "kolvex.met", 256);
    b->diag.outu = 0;
    char text[700];
    int n = qqbanner(b, 0, text, sizeof text);  // nothing written: an empty Metafile line
    CHECK_EQ(n, (int)std::strlen(text));
    CHECK(std::strstr(text, ("\n <<  Metafile: " + std::string(48, ' ') + "  <<\n").c_str()));
    CHECK(!std::strstr(text, "Err-file"));
    CHECK(!std::strstr(text, "NaN"));
    qqbanner(b, 10, text, sizeof text);  // no file, an error file
    CHECK(!std::strstr(text, "Metafile"));
    CHECK(std::strstr(text,
                      ("\n <<  Err-file: errors.log" + std::string(38, ' ') + "  <<\n").c_str()));
    qqbanner(b, 11, text, sizeof text);
    CHECK(std::strstr(text, "Metafile: kolvex.met"));
    CHECK(std::strstr(text, "Err-file: errors.log"));
    n = qqbanner(b, 1, text, 100);  // a short buffer cuts
    CHECK_EQ(n, 99);
    kolfin();
    delglb();
}

TEST(data_directory_resolution) {
    glbblk *b = quiet_block();
    char dir[257];
    const char *saved = std::getenv("KOLVEX");
    std::string keep = saved ? saved : "";
    setenv("KOLVEX", "/from/environment", 1);
    kolenv("/from/kolenv");
    qqdatadir(b, dir);
    CHECK(std::strcmp(dir, "/from/kolenv") == 0);
    kolenv("none");
    qqdatadir(b, dir);
    CHECK(std::strcmp(dir, "/from/environment") == 0);
    kolenv(std::string(1000, 'k').c_str());
    CHECK_EQ((int)std::strlen(b->sess.envdir), 256);
    kolenv("NONE");
    unsetenv("KOLVEX");
    // Beside the program (the library is linked into it): kolvex_data.
    char exe[4096];
    ssize_t len = readlink("/proc/self/exe", exe, sizeof exe - 1);
    CHECK(len > 0);
    exe[len > 0 ? len : 0] = '\0';
    std::string beside = std::string(exe).substr(0, std::string(exe).rfind('/')) + "/kolvex_data";
    struct stat st;
    bool made = false;
    if (stat(beside.c_str(), &st) != 0) made = mkdir(beside.c_str(), 0700) == 0;
    qqdatadir(b, dir);
    CHECK(beside == dir);
    if (made) {
        rmdir(beside.c_str());
        qqdatadir(b, dir);  // the directory of the build
        CHECK(beside != dir);
        CHECK(dir[0] == '/');
    }
    if (saved) setenv("KOLVEX", keep.c_str(), 1);
    delglb();
}
