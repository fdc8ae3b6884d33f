// The SVG, IPE and Java drivers: the bytes of small sessions, the elements
// of long lines, rotated pages, and a test page of each format for the
// outside readers of tests/test_vector_files.py.
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <regex>
#include <string>
#include <unistd.h>
#include <vector>

#include "core/guard.h"
#include "devices/device.h"
#include "devices/pdf.h"
#include "glbblk.h"
#include "kolvex.h"
#include "raster/canvas.h"
#include "testkit.h"

namespace {

// A session on a page of 2000 by 1000 plot coordinates.  SVG and Java
// draw it into 1001 by 501 pixels without the DIN A4 limit, so that one
// plot coordinate is half a pixel; IPE gets one point per coordinate.
glbblk *open_session(const char *device, const char *file) {
    static std::string dir = testkit::temp_dir();
    if (chdir(dir.c_str()) != 0) return nullptr;
    filmod("DELE");
    setfil(file);
    page(2001, 1001);
    winsiz(1001, 501);
    sclmod("FULL");
    if (std::string(device) == "IPE") sclfac(254.0 / 72.0);
    metafl(device);
    kolini();
    glbblk *b = qqglbblk(qqcur());
    if (b) b->diag.outu = 0;
    return b;
}

// A fresh block afterwards: the level-0 settings do not leak into the
// next test.
void close_session() {
    kolfin();
    delglb();
}

// The file with its time stamps replaced, which differ from run to run.
std::string stamped(const std::string &file) {
    std::string t = testkit::read_file(file);
    t = std::regex_replace(t, std::regex("\\d\\d\\.\\d\\d\\.\\d{4}"), "DATE");
    t = std::regex_replace(t, std::regex("\\d\\d:\\d\\d:\\d\\d"), "TIME");
    return std::regex_replace(t, std::regex("D:\\d{14}"), "D:STAMP");
}

void line(glbblk *b, const double *xy, int n) {
    qqmove(b, xy[0], xy[1]);
    for (int i = 1; i < n; ++i) qqdraw(b, xy[2 * i], xy[2 * i + 1]);
    qqflsh(b);
}

QQHwChar character(int code, double x, double y, int angle = 0, int font = 4) {
    QQHwChar c{};
    c.code = code;
    c.x = x;
    c.y = y;
    c.width = 20;
    c.height = 30;
    c.angle = angle;
    c.font = font;
    c.capheight = 718;
    return c;
}

bool same(const std::string &got, const std::string &want) {
    if (got == want) return true;
    std::fprintf(stderr, "---- got\n%s---- want\n%s----\n", got.c_str(), want.c_str());
    return false;
}

// A line of n points along y = 100, one plot coordinate apart.
void long_line(glbblk *b, int n) {
    qqmove(b, 0, 100);
    for (int i = 1; i < n; ++i) qqdraw(b, i, 100);
    qqflsh(b);
}

int count(const std::string &text, const std::string &what) {
    int n = 0;
    for (size_t p = text.find(what); p != std::string::npos; p = text.find(what, p + 1)) ++n;
    return n;
}

}  // namespace

TEST(svg_bytes_of_a_small_session) {
    glbblk *b = open_session("SVG", "small.svg");
    const DriverOps *drv = b->dev.drv;
    const double two[] = {100, 200, 300, 400}, three[] = {0, 0, 10, 0, 10, 10};
    const double five[] = {0, 0, 2, 0, 4, 0, 6, 0, 8, 0};
    const double six[] = {0, 0, 2, 0, 4, 0, 6, 0, 8, 0, 10, 0};
    line(b, two, 2);
    line(b, three, 3);
    line(b, five, 5);
    line(b, six, 6);
    setrgb(1.0, 0.5, 0.0);
    // A draw with no move before it goes on from the last point written.
    qqplot(b, 40, 60, QQ_DRAW);
    qqplot(b, 40, 60, QQ_ENDPATH);
    linwid(3);
    line(b, two, 2);
    qqmove(b, 7, 7);  // a move alone writes nothing
    qqflsh(b);
    newpag();  // one picture: nothing changes
    const double px[] = {100, 200, 200}, py[] = {100, 100, 300};
    const double cx[] = {100, 2200, 200}, cy[] = {100, 100, 300};
    CHECK_EQ(drv->fill_polygon(b, px, py, 3), 1);
    CHECK_EQ(drv->fill_polygon(b, cx, cy, 3), 0);  // crosses the page edge: hatched by the layer
    qqfrect(b, 300, 200, 100, 100, 0x01FF0000);
    qqfrect(b, 1900, 900, 2500, 1500, 0x0100FF00);  // cut to the page
    qqfrect(b, 2100, 0, 2200, 10, 0x0100FF00);      // outside: nothing
    QQHwChar c = character('A', 200, 400);
    qqhwchar(b, &c);
    c = character('&', 220, 400, 90);
    c.shift = 10;
    qqhwchar(b, &c);
    c = character(187, 240, 400);  // beyond the table: a blank
    c.angle = 90;
    qqhwchar(b, &c);
    c = character(127, 260, 400, 0, 0);  // another font: a new group
    qqhwchar(b, &c);
    c = character('<', 280, 400, 0, 0);
    c.pitch = 40;  // centred in its cell
    qqhwchar(b, &c);
    close_session();
    const std::string want =
        "<?xml version=\"1.0\" encoding=\"ISO-8859-1\" standalone=\"no\"?>\n"
        "<!DOCTYPE svg PUBLIC \"-//W3C//DTD SVG 20010904//EN\"\n"
        "  \"http://www.w3.org/TR/2001/REC-SVG-20010904/DTD/svg10.dtd\">\n"
        "<!-- Created by KOLVEX (https://www.kolvex.org)\n"
        "Version: 11.5\n"
        "Date   : DATE TIME\n"
        "-->\n"
        "<svg width=\"1001\" height=\"501\"\n"
        "  xmlns=\"http://www.w3.org/2000/svg\"\n"
        "  xmlns:xlink=\"http://www.w3.org/1999/xlink\">\n"
        "\n"
        "<g fill=\"none\" stroke=\"#000000\" stroke-width=\"1.000\">\n"
        "<line x1=\"50.00\" y1=\"100.00\" x2=\"150.00\" y2=\"200.00\"/>\n"
        "<polyline points=\"\n 0.00, 0.00 5.00, 0.00 5.00, 5.00\"/>\n"
        "<polyline points=\"\n 0.00, 0.00 1.00, 0.00 2.00, 0.00 3.00, 0.00 4.00, 0.00\"/>\n"
        "<polyline points=\"\n 0.00, 0.00 1.00, 0.00 2.00, 0.00 3.00, 0.00 4.00, 0.00\n"
        " 5.00, 0.00\"/>\n"
        "</g>\n"
        "<g fill=\"none\" stroke=\"#ff8000\" stroke-width=\"1.000\">\n"
        "<line x1=\"5.00\" y1=\"0.00\" x2=\"20.00\" y2=\"30.00\"/>\n"
        "</g>\n"
        "<g fill=\"none\" stroke=\"#ff8000\" stroke-width=\"1.500\">\n"
        "<line x1=\"50.00\" y1=\"100.00\" x2=\"150.00\" y2=\"200.00\"/>\n"
        "<polygon fill=\"#ff8000\" points=\"\n 50.00, 50.00 100.00, 50.00 100.00, 150.00\"/>\n"
        "<rect x=\"50.00\" y=\"50.00\" width=\"101.00\" height=\"51.00\"\n"
        " fill=\"#0000ff\" stroke=\"none\"/>\n"
        "<rect x=\"950.00\" y=\"450.00\" width=\"51.00\" height=\"51.00\"\n"
        " fill=\"#00ff00\" stroke=\"none\"/>\n"
        "</g>\n"
        "<g font-family=\"Helvetica\" font-weight=\"normal\" font-style=\"normal\"\n"
        "font-size=\"22\" stroke=\"none\" fill=\"#ff8000\">\n"
        "<text x=\"100.00\" y=\"200.00\">A</text>\n"
        "<text x=\"105.00\" y=\"200.00\" rotate=\"-90\">&amp;</text>\n"
        "<text x=\"120.00\" y=\"200.00\" rotate=\"-90\"> </text>\n"
        "</g>\n"
        "<g font-family=\"Times\" font-weight=\"normal\" font-style=\"normal\"\n"
        "font-size=\"22\" stroke=\"none\" fill=\"#ff8000\">\n"
        "<text x=\"130.00\" y=\"200.00\">\xC4</text>\n"
        "<text x=\"145.00\" y=\"200.00\">&lt;</text>\n"
        "</g>\n"
        "</svg>\n";
    CHECK(same(stamped("small.svg"), want));
    CHECK(std::regex_search(
        testkit::read_file("small.svg"),
        std::regex("\nDate   : \\d\\d\\.\\d\\d\\.20\\d\\d \\d\\d:\\d\\d:\\d\\d\n")));
}

TEST(svg_groups_follow_text_size_and_dark_sheet) {
    scrmod("ERAS");  // a dark sheet: the background rectangle in black
    glbblk *b = open_session("SVG", "dark.svg");
    QQHwChar c = character('x', 0, 0);
    qqhwchar(b, &c);
    c.height = 60;  // a new size opens a new group, even unannounced
    qqhwchar(b, &c);
    qqhwstyle(b);
    const double two[] = {0, 0, 10, 10};
    line(b, two, 2);
    close_session();
    std::string t = testkit::read_file("dark.svg");
    // The background comes first, then the text in the foreground white.
    CHECK(t.find("xlink\">\n\n<g fill=\"none\" stroke=\"#000000\" stroke-width=\"1.000\">\n"
                 "<rect x=\"0.00\" y=\"0.00\" width=\"1000.00\" height=\"500.00\"\n"
                 " fill=\"#000000\" stroke=\"none\"/>\n</g>\n<g font-family=\"Helvetica\" "
                 "font-weight=\"normal\" font-style=\"normal\"\nfont-size=\"22\" "
                 "stroke=\"none\" fill=\"#ffffff\">\n") != std::string::npos);
    CHECK_EQ(count(t, "font-size=\"22\""), 1);
    CHECK_EQ(count(t, "font-size=\"44\""), 1);
    CHECK_EQ(count(t, "<g "), count(t, "</g>"));
}

TEST(ipe_bytes_of_a_small_session) {
    glbblk *b = open_session("IPE", "small.ipe");
    const DriverOps *drv = b->dev.drv;
    const double two[] = {100, 200, 300, 400};
    line(b, two, 2);
    qqmove(b, 7, 7);  // a move alone writes nothing
    qqflsh(b);
    setrgb(1.0, 0.5, 0.0);
    qqplot(b, 40, 60, QQ_DRAW);  // goes on from the saved pen
    qqplot(b, 40, 60, QQ_ENDPATH);
    linwid(3);
    line(b, two, 2);
    linwid(1);  // the thinnest pen, and no emulation
    CHECK_EQ(b->dev.lnwid, 1);
    line(b, two, 2);
    penwid(0.5);
    line(b, two, 2);
    const double px[] = {100, 200, 200}, py[] = {100, 100, 300};
    CHECK_EQ(drv->fill_polygon(b, px, py, 3), 1);
    qqfrect(b, 100, 100, 300, 200, 0x01FF0000);
    setclr(255);  // black again
    QQHwChar c = character('_', 200, 400);
    qqhwchar(b, &c);
    setrgb(0.0, 0.0, 1.0);
    c = character('&', 220, 400, 90);
    qqhwchar(b, &c);
    c = character('<', 240, 400, 45);
    qqhwchar(b, &c);
    c = character(187, 260, 400);
    qqhwchar(b, &c);
    newpag();
    close_session();
    const std::string want =
        "<?xml version=\"1.0\"?>\n"
        "<!DOCTYPE ipe SYSTEM \"ipe.dtd\">\n"
        "<ipe version=\"70010\" creator=\"Kolvex 11.5\">\n"
        "<info created=\"D:STAMP\" modified=\"D:STAMP\"/>\n"
        "<preamble>\\usepackage{times,graphicx}</preamble>\n"
        "<ipestyle name=\"basic\">\n"
        "<layout paper=\"2000 1000\" frame=\"2000 1000\" origin=\"0 0\"/>\n"
        "</ipestyle>\n"
        "<page>\n"
        "<layer name=\"alpha\"/>\n"
        "<view layers=\"alpha\" active=\"alpha\"/>\n"
        "<path layer=\"alpha\" stroke=\"0 0 0\" pen=\"2.500\">\n"
        "100.0 800.0 m\n300.0 600.0 l\n</path>\n"
        "<path layer=\"alpha\" stroke=\"1 0.502 0\" pen=\"2.500\">\n"
        "7.0 993.0 m\n40.0 940.0 l\n</path>\n"
        "<path layer=\"alpha\" stroke=\"1 0.502 0\" pen=\"3.000\">\n"
        "100.0 800.0 m\n300.0 600.0 l\n</path>\n"
        "<path layer=\"alpha\" stroke=\"1 0.502 0\" pen=\"2.500\">\n"
        "100.0 800.0 m\n300.0 600.0 l\n</path>\n"
        "<path layer=\"alpha\" stroke=\"1 0.502 0\" pen=\"1.250\">\n"
        "100.0 800.0 m\n300.0 600.0 l\n</path>\n"
        "<path layer=\"alpha\" fill=\"1 0.502 0\" stroke=\"1 0.502 0\">\n"
        "100.0 900.0 m\n200.0 900.0 l\n200.0 700.0 l\n100.0 900.0 l\n</path>\n"
        "<path layer=\"alpha\" fill=\"0 0 1\">\n"
        "100.0 900.0 m\n100.0 800.0 l\n300.0 800.0 l\n300.0 900.0 l\n100.0 900.0 l\n</path>\n"
        "<text pos=\"200.0 600.0\" type=\"label\" valign=\"baseline\" size=\"41.8\">\\_</text>\n"
        "<text pos=\"220.0 600.0\" type=\"label\" valign=\"baseline\" stroke=\"0 0 1\" "
        "size=\"41.8\"\nhalign=\"right\" >\\rotatebox{90}\\&amp;</text>\n"
        "<text pos=\"240.0 600.0\" type=\"label\" valign=\"baseline\" stroke=\"0 0 1\" "
        "size=\"41.8\"\n>\\rotatebox{45}\\textless</text>\n"
        "<text pos=\"260.0 600.0\" type=\"label\" valign=\"baseline\" stroke=\"0 0 1\" "
        "size=\"41.8\"> </text>\n"
        "</page>\n"
        "<page>\n"
        "</page>\n"
        "</ipe>\n";
    CHECK(same(stamped("small.ipe"), want));
    CHECK(std::regex_search(testkit::read_file("small.ipe"),
                            std::regex("created=\"D:20\\d{12}\" modified")));
}

TEST(java_bytes_of_a_small_session) {
    glbblk *b = open_session("JAVA", "small.java");
    const double three[] = {100, 200, 301, 401, 301, 0};
    line(b, three, 3);
    setrgb(1.0, 0.5, 0.0);
    qqfrect(b, 300, 200, 100, 100, 0x01FF0000);
    qqfrect(b, 0, 0, 10, 10, 0x010080FF);  // in the current colour
    erase();
    linwid(3);  // no width in Java: parallel strokes
    const double two[] = {0, 100, 100, 100};
    line(b, two, 2);
    close_session();
    const std::string want =
        "// KOLVEX Java Metafile\n"
        "// Creator: KOLVEX 11.5\n"
        "// Date   : DATE, TIME\n"
        "// Size   : 1001 501\n"
        "\n"
        "import java.applet.*;\n"
        "import java.awt.*;\n"
        "\n"
        "public class small extends Applet {\n"
        "public void paint(Graphics g) {\n"
        "  g.setColor (new Color (0,0,0));\n"
        "  g.drawLine (50,100,151,201);\n"
        "  g.drawLine (151,201,151,0);\n"
        "  g.setColor (new Color (255,128,0));\n"
        "  g.setColor (new Color (0,0,255));\n"
        "  g.fillRect (50,50,101,51);\n"
        "  g.setColor (new Color (255,128,0));\n"
        "  g.setColor (new Color (255,128,0));\n"
        "  g.fillRect (0,0,6,6);\n"
        "  g.clearRect (0,0,1001,501);\n";
    std::string got = stamped("small.java");
    CHECK(same(got.substr(0, want.size()), want));
    CHECK(got.size() > want.size() + 7 && got.compare(got.size() - 6, 6, "  }\n}\n") == 0);
    // The thick line: the centre line and outlines on both sides.
    CHECK(count(got, "g.drawLine") >= 5);
}

TEST(long_lines_are_elements_of_100_points) {
    for (const char *dev : {"SVG", "IPE"}) {
        std::string file = std::string("long.") + dev;
        glbblk *b = open_session(dev, file.c_str());
        long_line(b, 250);
        close_session();
        std::string t = testkit::read_file(file);
        if (std::string(dev) == "SVG") {
            // 100, 100 and 52 points; each piece starts where the last ended.
            std::vector<std::string> el;
            for (size_t p = t.find("<polyline"); p != std::string::npos;
                 p = t.find("<polyline", p + 1))
                el.push_back(t.substr(p, t.find("/>", p) - p));
            CHECK_EQ(el.size(), 3u);
            if (el.size() == 3) {
                CHECK_EQ(count(el[0], ", 50.00"), 100);
                CHECK_EQ(count(el[1], ", 50.00"), 100);
                CHECK_EQ(count(el[2], ", 50.00"), 52);
                CHECK(el[0].find("\n 0.00, 50.00 0.50, 50.00") != std::string::npos);
                CHECK(el[0].find(" 49.50, 50.00\"") != std::string::npos);
                CHECK(el[1].find("\n 49.50, 50.00 50.00, 50.00") != std::string::npos);
                CHECK(el[2].find("\n 99.00, 50.00 99.50, 50.00") != std::string::npos);
                CHECK(el[2].find(" 124.50, 50.00\"") != std::string::npos);
            }
        } else {
            CHECK_EQ(count(t, "<path"), 3);
            CHECK_EQ(count(t, " m\n"), 3);
            CHECK_EQ(count(t, " l\n"), 99 + 99 + 51);
            CHECK_EQ(count(t, "99.0 900.0 m\n"), 1);
            CHECK_EQ(count(t, "198.0 900.0 m\n"), 1);
            CHECK_EQ(count(t, "249.0 900.0 l\n</path>\n"), 1);
        }
    }
}

TEST(portrait_pages_turn_the_picture) {
    // The page of 2000 by 1000 turned: s = min(1000 / 1000, 500 / 2000).
    const double two[] = {0, 0, 2000, 0};
    pagmod("PORT");
    glbblk *b = open_session("SVG", "port.svg");
    CHECK_NEAR(b->sess.devscl, 0.25, 1e-12);
    line(b, two, 2);
    qqfrect(b, 100, 200, 300, 400, 0x01FF0000);
    close_session();
    // Y = (nxp - x)·s: the page's top edge runs up the picture's left side.
    std::string svg = testkit::read_file("port.svg");
    CHECK(svg.find("<line x1=\"0.00\" y1=\"500.00\" x2=\"0.00\" y2=\"0.00\"/>") !=
          std::string::npos);
    CHECK(svg.find("<rect x=\"50.00\" y=\"425.00\" width=\"51.00\" height=\"51.00\"") !=
          std::string::npos);

    pagmod("PORT");
    open_session("IPE", "port.ipe");
    line(qqglbblk(qqcur()), two, 2);
    close_session();
    std::string ipe = testkit::read_file("port.ipe");
    // X = s·y, Y = s·x, on a paper turned to hold it.
    CHECK(ipe.find("<layout paper=\"1000 2000\" frame=\"1000 2000\"") != std::string::npos);
    CHECK(ipe.find("0.0 0.0 m\n0.0 2000.0 l\n") != std::string::npos);

    pagmod("PORT");
    b = open_session("JAVA", "port.java");
    qqfrect(b, 100, 200, 300, 400, 0x01FF0000);
    close_session();
    CHECK(testkit::read_file("port.java").find("  g.fillRect (50,425,51,51);\n") !=
          std::string::npos);
}

namespace {

// The test page of the three formats and PNG: the page frame, a sine curve
// of 250 points in red, a green zig-zag, filled polygons and rectangles,
// and on the formats with hardware fonts a line of text.
void draw_page(const char *device, const std::string &file) {
    setfil(file.c_str());
    filmod("DELE");
    scrmod("REVE");  // white sheet
    metafl(device);
    kolini();
    glbblk *b = qqglbblk(qqcur());
    b->diag.outu = 0;
    const DriverOps *drv = b->dev.drv;
    setvlt("SMAL");
    color("FORE");
    pagera();
    setclr(2);  // red
    qqmove(b, 200, 600);
    for (int i = 1; i < 250; ++i) qqdraw(b, 200 + 10 * i, 600 - 400 * std::sin(i * 0.05));
    qqflsh(b);
    setclr(3);  // green
    const double zig[] = {200, 1500, 500, 1100, 800, 1500, 1100, 1100, 1400, 1500};
    line(b, zig, 5);
    setclr(4);  // blue
    linwid(1);
    double sx[10], sy[10];
    for (int i = 0; i < 10; ++i) {
        double r = i % 2 ? 90 : 240, a = 3.14159265 * (0.5 + i / 5.0);
        sx[i] = 2300 + r * std::cos(a);
        sy[i] = 1000 - r * std::sin(a);
    }
    if (drv->fill_polygon) drv->fill_polygon(b, sx, sy, 10);  // Java: fills come as lines
    qqfrect(b, 1700, 1300, 2100, 1500, 6);  // orange
    setclr(8);                               // magenta
    const double box[] = {1600, 1700, 2800, 1700, 2800, 2000, 1600, 2000, 1600, 1700};
    line(b, box, 5);
    {  // characters that a driver refuses are not drawn until text strokes them
        const char *text = "Kolvex <&> _{}$%~\\^#";
        for (int i = 0; text[i]; ++i) {
            QQHwChar c = character((unsigned char)text[i], 1650 + 55 * i, 1900);
            c.height = 60;
            qqhwchar(b, &c);
        }
        QQHwChar c = character(129, 1650, 1800);  // an accented letter
        c.height = 60;
        qqhwchar(b, &c);
        c = character('V', 2700, 1950, 90, 1);
        c.height = 60;
        qqhwchar(b, &c);
    }
    if (std::string(device) == "PNG") {
        // The finished picture as a PDF of its own, as expimg writes it.
        FILE *fp = std::fopen((file + ".pdf").c_str(), "wb");
        CHECK(fp && qqpdfexport(b, fp, qqcanvasof(b)) == 0);
        if (fp) std::fclose(fp);
    }
    kolfin();
    delglb();
}

}  // namespace

// Writes the page in every format where tests/test_vector_files.py asks
// for it; the readers there check it.
PAGE(vector_test_page) {
    const char *dir = std::getenv("KOLVEX_PAGE_DIR");
    std::string base = std::string(dir ? dir : testkit::temp_dir().c_str()) + "/vector_test_page.";
    for (const char *dev : {"SVG", "IPE", "JAVA", "PNG", "PDF"}) {
        std::string ext = dev;
        for (char &ch : ext) ch = (char)std::tolower((unsigned char)ch);
        draw_page(dev, base + ext);
        CHECK(testkit::read_file(base + ext).size() > 200 || std::string(dev) == "PNG");
    }
}
