// The PostScript driver: the bytes of its head, paths, fills, pages and
// modes, string escaping, and a test page that tests/test_postscript.py
// renders with an outside interpreter and compares with the PNG.
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string>
#include <unistd.h>

#include "core/guard.h"
#include "devices/device.h"
#include "devices/postscript.h"
#include "glbblk.h"
#include "kolvex.h"
#include "raster/canvas.h"
#include "raster/writers.h"
#include "testkit.h"

namespace {

glbblk *open_ps(const char *device, const char *file) {
    static std::string dir = testkit::temp_dir();
    if (chdir(dir.c_str()) != 0) return nullptr;
    setenv("SOURCE_DATE_EPOCH", "86399", 1);  // 01.01.1970 23:59:59
    filmod("DELE");
    setfil(file);
    metafl(device);
    kolini();
    glbblk *b = qqglbblk(qqcur());
    if (b) b->diag.outu = 0;
    return b;
}

std::string close_ps(const char *file) {
    kolfin();
    delglb();
    unsetenv("SOURCE_DATE_EPOCH");
    return testkit::read_file(file);
}

bool has(const std::string &text, const std::string &what) {
    if (text.find(what) != std::string::npos) return true;
    size_t from = text.size() > 1500 ? text.size() - 1500 : 0;
    std::fprintf(stderr, "---- missing\n%s\n---- in (the end)\n%s----\n", what.c_str(), text.c_str() + from);
    return false;
}

// The drawing with its line breaks taken out: the words carry their
// blanks, so it reads as one stream.
std::string flat(const std::string &text) {
    std::string out;
    for (char ch : text)
        if (ch != '\n') out += ch;
    return out;
}

std::string prolog_first = "/cm {0.1417322835 mul} def /rgb {255 div} def /lc 1 string def\n";
std::string prolog_last = " 8#271 /exclamdown 8#272 /questiondown ] def\n";

}  // namespace

TEST(ps_head_of_a_landscape_page) {
    open_ps("PS", "head.ps");
    std::string t = close_ps("head.ps");
    // DIN A4 across: 2969 by 2099 plot coordinates at 3900 / 2099 units
    // each, turned onto the portrait sheet.
    std::string want =
        "%!PS-Adobe-2.0\n"
        "%%BoundingBox:  21 28 575 811\n"
        "%%Creator: KOLVEX  11.5 L\n"
        "%%CreationDate: 01.01.1970 , 23:59:59\n"
        "%%Pages: (atend)\n"
        "%%EndComments\n"
        "%%BeginProlog\n" +
        prolog_first;
    CHECK(t.compare(0, want.size(), want) == 0);
    CHECK(has(t, prolog_last +
                     "%%EndProlog\n%%Page: 1 1\ninitgraphics\n"
                     "  150 cm   200 cm translate   1.000000  1.000000 scale\n"
                     "erasepage\n2 setlinecap 2 setlinejoin\n0 0 0 f "));
    CHECK(has(t, "gsave showpage grestore \n%%Trailer \n%%Pages: 1 \n%%EOF \n"));
}

TEST(ps_eps_single_and_origin) {
    psmeta("%%Title: (a) \\ b\nnext", "INFO");
    hwscal(0.5);
    hworig(100, 200);
    setpag("DA4P");
    open_ps("EPS", "one.eps");
    newpag();  // one page only: nothing
    std::string t = close_ps("one.eps");
    CHECK(has(t, "%!PS-Adobe-3.0 EPSF-3.0\n%%BoundingBox:  28 56 305 448\n%%Creator: KOLVEX  11.5 P\n"));
    CHECK(has(t, "%%CreationDate: 01.01.1970 , 23:59:59\n%%Title: (a) \\ b next\n%%EndComments\n%%BeginProlog\n"));
    CHECK(has(t, prolog_last + "  100 cm   200 cm translate   0.500000  0.500000 scale\n"
                               "%%EndProlog\n%%Page: 1 1\n2 setlinecap 2 setlinejoin\n"));
    CHECK(t.find("%%Pages") == std::string::npos && t.find("%%Trailer") == std::string::npos);
    CHECK(t.find("%%EOF") == std::string::npos && t.find("copypage") == std::string::npos);
    CHECK(t.find("erasepage") == std::string::npos);
    CHECK(t.size() > 20 && t.compare(t.size() - 25, 25, "gsave showpage grestore \n") == 0);

    psmode("SING");
    open_ps("PSCL", "sing.psc");
    psmode("MULT");  // level 0 only
    CHECK_EQ((int)qqglbblk(qqcur())->ps.pssing, 1);
    t = close_ps("sing.psc");
    psmode("MULT");
    CHECK(has(t, "%%EndComments\n%%Page: 1 1\n2 setlinecap 2 setlinejoin\n" + prolog_first));
    // PSCL paints the dark background of the screen mode.
    CHECK(has(t, prolog_last + "  150 cm   200 cm translate   1.000000  1.000000 scale\n"
                               "0 0 3900 5516 0 0 0 e \n255 255 255 f "));
    CHECK(t.find("%%Begin") == std::string::npos && t.find("%%End") == t.find("%%EndComments"));
    CHECK(t.size() > 20 && t.compare(t.size() - 10, 10, "showpage \n") == 0 &&
          t.find("gsave showpage") == std::string::npos);
}

TEST(ps_paths_widths_and_fills) {
    setpag("DA4P");
    hwpage(2100, 2970);  // 2099 by 2969: two units a plot coordinate, y turned
    glbblk *b = open_ps("PS", "paths.ps");
    const DriverOps *drv = b->dev.drv;
    CHECK(b->sess.devscl == 2.0);
    linwid(1);
    qqmove(b, 100, 2969);
    qqdraw(b, 100, 2969);  // a dot
    qqflsh(b);
    qqmove(b, 10, 2969);
    qqdraw(b, 20, 2969);
    qqdraw(b, 20, 2969);  // repeated: dropped
    qqdraw(b, 20.2, 2968.8);  // the same integer point: dropped
    qqdraw(b, 30, 2969);
    qqflsh(b);
    qqplot(b, 50, 2969, QQ_DRAW);  // goes on from the pen of the last path
    qqplot(b, 0, 0, QQ_ENDPATH);
    linwid(4);
    lncap("ROUN");
    lnjoin("SHAR");
    lnmlt(3.0);
    const double px[] = {0, 100, 100}, py[] = {2969, 2969, 2869};
    CHECK_EQ(drv->fill_polygon(b, px, py, 3), 1);
    drv->fill_rect(b, 500, 2969, 500, 2869, 0x010000FF);  // no width: a stripe of 4 units
    drv->fill_rect(b, 3000, 0, 3100, 10, 0x010000FF);     // off the page: nothing
    penwid(0.5);
    clpwin(100, 200, 300, 400);
    reset("CLPWIN");
    reset("CLPWIN");  // the page again: nothing more to write
    CHECK_EQ(drv->sector(b, 100, 2869, 10, 50.2, 0, 90.5, 0x0100FF00), 1);
    CHECK_EQ(drv->triangle(b, px, py), 1);
    std::string t = flat(close_ps("paths.ps"));
    CHECK(has(t, "initclip 200 5538 798 4740 clp initclip 0 5938 4198 0 clp 200 200 20 100 0.00 90.50 0 255 0 sec "
                 "0 0 200 0 200 200 tri "));
    CHECK(has(t, "5.00 cm setlinewidth 198 0 u 202 0 d p 20 0 u 40 0 d 60 0 d p 60 0 u 100 0 d p "));
    // Each change of style sets the width again; a sharp join carries the
    // miter limit in units of the width.
    CHECK(has(t, "8.00 cm setlinewidth 1 setlinecap 8.00 cm setlinewidth 0 setlinejoin 16 cm setmiterlimit "
                 "8.00 cm setlinewidth 16 cm setmiterlimit 24 cm setmiterlimit "));
    CHECK(has(t, "0 0 u 200 0 d 200 200 d 0 0 d eofill 998 200 1002 0 255 0 0 e 2.50 cm setlinewidth"));
    CHECK(t.find("6200") == std::string::npos);
}

TEST(ps_long_lines_pages_and_grey) {
    setpag("DA4P");
    hwpage(2100, 2970);
    glbblk *b = open_ps("POST", "long.psc");
    // 150 points: one path of 100 and one of 51 that starts where it ended.
    qqmove(b, 0, 2000);
    for (int i = 1; i < 150; ++i) qqdraw(b, i, 2000 + (i % 2));
    qqflsh(b);
    color("RED");
    newpag();
    newpag();
    std::string t = close_ps("long.psc"), ft = flat(t);
    size_t first = ft.find(" u "), second = ft.find(" u ", first + 1);
    CHECK(first != std::string::npos && second != std::string::npos);
    std::string one = ft.substr(first, second - first);
    int draws = 0;
    for (size_t p = one.find(" d "); p != std::string::npos; p = one.find(" d ", p + 1)) ++draws;
    CHECK_EQ(draws, 99);
    // The full buffer ends its path; the layer's move that starts the next
    // piece finds the carried point alone.
    CHECK(has(ft, "198 1936 d p 198 1936 u p 198 1936 u 200 1938 d "));
    // The grey table: red comes out as a grey.
    size_t f = ft.find(" f ", second);
    std::string rgb = ft.substr(ft.rfind("p ", f) + 2, f - ft.rfind("p ", f) - 2);
    int r = -1, g = -2, bl = -3;
    CHECK(std::sscanf(rgb.c_str(), "%d %d %d", &r, &g, &bl) == 3 && r == g && g == bl && r > 0 && r < 255);
    CHECK(has(t, "copypage \n%%Page: 1 2 \nerasepage \n2 setlinecap 2 setlinejoin 5 cm setlinewidth\n" + rgb +
                     " f copypage \n%%Page: 1 3 \n"));
    CHECK(has(t, "%%Pages: 3 \n%%EOF \n"));
}

TEST(ps_export_of_an_image) {
    std::string dir = testkit::temp_dir();
    if (chdir(dir.c_str()) != 0) return;
    filmod("DELE");
    setfil("e.png");
    winsiz(41, 17);  // wider than high: turned onto the sheet
    metafl("PNG");
    kolini();
    glbblk *b = qqglbblk(qqcur());
    b->diag.outu = 0;
    CHECK_EQ(qqwritefile(b, "e.ps", QQ_WPS), 0);
    kolfin();
    delglb();
    std::string t = testkit::read_file("e.ps");
    CHECK(has(t, "%!PS-Adobe-2.0\n%%BoundingBox:  21 28 575 823\n%%Creator: KOLVEX  10.3\n"
                 "21.260 28.346 translate \n/DeviceRGB setcolorspace\ngsave 552.756 0 translate \n"
                 "90 rotate\n793.701 329.095 scale \n<<\n/ImageType 1\n/Width 41\n/Height 17\n"
                 "/BitsPerComponent 8\n/Decode [0 1 0 1 0 1]\n/ImageMatrix [41 0 0 -17 0 17]\n"
                 "/DataSource currentfile /ASCIIHexDecode filter\n>> image\n"));
    // 41 by 17 pixels of 6 digits: 52 lines of 80 and one of 22.
    size_t data = t.find(">> image\n") + 9, end = t.find("\n> grestore showpage\n");
    CHECK(end != std::string::npos && end + 21 == t.size());
    std::string hex = t.substr(data, end - data);
    CHECK_EQ((int)hex.size(), 41 * 17 * 6 + 52);
    CHECK(hex.find_first_not_of("0123456789ABCDEF\n") == std::string::npos);
    CHECK(hex.substr(80, 1) == "\n" && hex.substr(hex.size() - 23, 1) == "\n");
}

TEST(ps_strings_are_escaped) {
    char out[64];
    CHECK_EQ(qqpsesc("a(b)c\\d", 7, out, sizeof out), 10);
    CHECK(std::string(out) == "a\\(b\\)c\\\\d");
    const char bytes[] = {'\n', '\x7f', '\xdc', '\0', 'z'};
    CHECK_EQ(qqpsesc(bytes, 5, out, sizeof out), 17);
    CHECK(std::string(out) == "\\012\\177\\334\\000z");
    CHECK_EQ(qqpsesc("((((", 4, out, 8), -1);  // 8 bytes and the end do not fit in 8
    CHECK(out[0] == '\0');
    CHECK_EQ(qqpsesc("((((", 4, out, 9), 8);
}

// The page of tests/test_postscript.py, in PostScript and PNG: lines of
// several widths and colours, a dashed line, a dotted curve, a filled
// star, filled rectangles and a clipped line.
TEST(ps_test_page) {
    const char *dir = std::getenv("KOLVEX_PAGE_DIR");
    std::string base = std::string(dir ? dir : testkit::temp_dir().c_str()) + "/ps_test_page.";
    for (const char *dev : {"PS", "PNG"}) {
        std::string file = base + (std::strcmp(dev, "PS") == 0 ? "ps" : "png");
        setfil(file.c_str());
        filmod("DELE");
        scrmod("REVE");
        metafl(dev);
        kolini();
        glbblk *b = qqglbblk(qqcur());
        b->diag.outu = 0;
        const DriverOps *drv = b->dev.drv;
        setvlt("SMAL");
        color("FORE");
        pagera();
        setclr(2);  // red curve, thin
        qqmove(b, 200, 600);
        for (int i = 1; i < 250; ++i) qqdraw(b, 200 + 10 * i, 600 - 400 * std::sin(i * 0.05));
        qqflsh(b);
        setclr(3);  // green, wide
        linwid(12);
        qqmove(b, 200, 1500);
        qqdraw(b, 500, 1100);
        qqdraw(b, 800, 1500);
        qqdraw(b, 1100, 1100);
        qqflsh(b);
        linwid(1);
        setclr(4);  // blue star
        double sx[10], sy[10];
        for (int i = 0; i < 10; ++i) {
            double r = i % 2 ? 90 : 240, a = 3.14159265 * (0.5 + i / 5.0);
            sx[i] = 2300 + r * std::cos(a);
            sy[i] = 1000 - r * std::sin(a);
        }
        drv->fill_polygon(b, sx, sy, 10);
        drv->fill_rect(b, 1700, 1300, 2100, 1500, 6);  // orange
        setclr(8);                                     // magenta dashes
        linwid(4);
        b->dev.dshn = 2;
        b->dev.dshl[0] = 120;
        b->dev.dshl[1] = 80;
        qqdshres(b);
        qqmove(b, 200, 1800);
        qqdraw(b, 2800, 1800);
        qqflsh(b);
        b->dev.dshn = 1;
        qqdshres(b);
        linwid(1);
        setclr(5);  // cyan: a long line clipped to a window
        clpwin(1300, 200, 1000, 500);
        qqmove(b, 1000, 100);
        qqdraw(b, 2600, 900);
        qqflsh(b);
        // The raster page exported as a PostScript image, too.
        if (qqcanvasof(b)) CHECK_EQ(qqwritefile(b, (base + "export.ps").c_str(), QQ_WPS), 0);
        kolfin();
        delglb();
        CHECK(testkit::read_file(file).size() > 1000);
    }
    // The sector and the triangle of the prolog, for the interpreter.
    std::string shapes = base + "shapes.ps";
    setfil(shapes.c_str());
    filmod("DELE");
    metafl("PS");
    kolini();
    glbblk *b = qqglbblk(qqcur());
    b->diag.outu = 0;
    const DriverOps *drv = b->dev.drv;
    drv->sector(b, 1000, 1000, 200, 600, 30, 150, 0x010000FF);  // red
    setrgb(0, 0, 1);
    const double tx[] = {2000, 2800, 2400}, ty[] = {1800, 1800, 1000};
    drv->triangle(b, tx, ty);  // blue
    kolfin();
    delglb();
}
