// The PDF driver: the bytes of a small uncompressed session, the offsets
// of the cross-reference table, long pages in several streams, memory
// output against the file, and the fallbacks when memory runs out.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <regex>
#include <string>
#include <unistd.h>

#include "core/guard.h"
#include "devices/device.h"
#include "devices/pdf_doc.h"
#include "glbblk.h"
#include "kolvex.h"
#include "testkit.h"

namespace {

// A portrait page of 1000 by 1400 plot coordinates at half a point each.
glbblk *open_pdf(const char *file, bool compress, bool memory = false) {
    static std::string dir = testkit::temp_dir();
    if (chdir(dir.c_str()) != 0) return nullptr;
    setenv("SOURCE_DATE_EPOCH", "86400", 1);
    filmod("DELE");
    setfil(file);
    page(1000, 1400);
    sclfac(0.5 * 254.0 / 72.0);
    pdfmod(compress ? "ON" : "OFF", "COMP");
    pdfmod(memory ? "ON" : "OFF", "BUFF");
    metafl("PDF");
    kolini();
    glbblk *b = qqglbblk(qqcur());
    if (b) b->diag.outu = 0;
    return b;
}

bool same(const std::string &got, const std::string &want) {
    if (got == want) return true;
    std::fprintf(stderr, "---- got\n%s---- want\n%s----\n", got.c_str(), want.c_str());
    return false;
}

int count(const std::string &text, const std::string &what) {
    int n = 0;
    for (size_t p = text.find(what); p != std::string::npos; p = text.find(what, p + 1)) ++n;
    return n;
}

// Every entry of the cross-reference table points at its object's header,
// and startxref at the table.
bool offsets_hold(const std::string &pdf) {
    size_t sx = pdf.rfind("startxref\n");
    if (sx == std::string::npos) return false;
    size_t xref = std::strtoul(pdf.c_str() + sx + 10, nullptr, 10);
    if (pdf.compare(xref, 5, "xref\n") != 0) return false;
    int n = std::atoi(pdf.c_str() + xref + 7);
    size_t row = pdf.find('\n', xref + 5) + 1 + 20;
    for (int i = 1; i < n; ++i, row += 20) {
        size_t off = std::strtoul(pdf.c_str() + row, nullptr, 10);
        std::string head = std::to_string(i) + " 0 obj\n";
        if (pdf.compare(off, head.size(), head) != 0 ||
            pdf.compare(row + 10, 10, " 00000 n \n") != 0)
            return false;
    }
    return true;
}

int calls = 0, failing_call = 0;  // the allocation that fails, counted from 1; 0 none
size_t failing_from = 0;          // or: every request of this size or more fails
void *test_realloc(void *old, size_t size) {
    if (failing_from && size >= failing_from) return nullptr;
    if (++calls == failing_call) return nullptr;
    return std::realloc(old, size);
}

// A character of Helvetica, 36 plot coordinates high, at (100, 1000).
QQHwChar helvetica(int code) {
    QQHwChar c{};
    c.code = code;
    c.x = 100;
    c.y = 1000;
    c.height = 36;
    c.font = 4;
    c.capheight = 720;
    return c;
}

}  // namespace

TEST(pdf_bytes_of_a_small_session) {
    glbblk *b = open_pdf("small.pdf", false);
    CHECK_NEAR(b->sess.devscl, 0.5, 1e-12);
    const DriverOps *drv = b->dev.drv;
    qqmove(b, 100, 200);
    qqdraw(b, 300, 200);
    qqdraw(b, 300, 200);  // a repeated point adds nothing
    qqflsh(b);
    qqmove(b, 500, 500);  // a point is a short dash
    qqdraw(b, 500, 500);
    qqflsh(b);
    setrgb(1.0, 0.5, 0.0);
    linwid(3);
    lnjoin("ROUN");
    const double px[] = {100, 200, 200}, py[] = {100, 100, 300};
    CHECK_EQ(drv->fill_polygon(b, px, py, 3), 1);
    drv->fill_rect(b, 10, 20, 10, 40, 0x01FF0000);  // no width: a stripe
    clpwin(0, 0, 500, 400);
    QQHwChar c = helvetica('(');
    drv->character(b, &c);
    c.code = 129;  // an accented letter, in the same text object
    c.x = 130;
    drv->character(b, &c);
    c.angle = 90;
    c.font = 34;  // another font: a new text object
    drv->character(b, &c);
    pdfmrk("One", "CHAP");
    newpag();
    kolfin();
    delglb();
    std::string got = testkit::read_file("small.pdf");
    const std::string want =
        "%PDF-1.3\n"
        "3 0 obj\n<< /Length 4 0 R >>\nstream\n"
        "0.709 w\n2 J\n2 j\n"
        "0 0 0 rg\n0 0 0 RG\n"
        "50.00 599.50 m\n150.00 599.50 l\n"
        "S\n249.65 449.50 m\n250.35 449.50 l\n"
        "S\n1 0.502 0 rg\n1 0.502 0 RG\n"
        "1.500 w\n"
        "1 j\n1.500 w\n"
        "50.00 649.50 m\n100.00 649.50 l\n100.00 549.50 l\nh\nf*\n"
        "S\n0 0 1 rg\n4.65 679.50 0.71 10.00 re\nf\n"
        "q\n0.00 500.00 m 249.50 500.00 l 249.50 699.50 l 0.00 699.50 l h W n\n"
        "1 0.502 0 rg\nBT\n/F5 25.0 Tf\n100 Tz\n1 0 0 1 50.00 199.50 Tm\n(\\50) Tj\n"
        "1 0 0 1 65.00 199.50 Tm\n(\\334) Tj\n"
        "ET\nBT\n/F35 25.0 Tf\n100 Tz\n0 1 -1 0 65.00 199.50 Tm\n(\\334) Tj\n"
        "ET\nQ\nendstream\nendobj\n"
        "4 0 obj\n474\nendobj\n"
        "5 0 obj\n<< /Type /Font\n/Subtype /Type1\n/BaseFont /Helvetica\n/Encoding "
        "/WinAnsiEncoding\n>>\nendobj\n"
        "6 0 obj\n<< /Type /Font\n/Subtype /Type1\n/BaseFont /Symbol\n>>\nendobj\n"
        "7 0 obj\n<<\n/Type /Page\n/MediaBox [0 0 500 700]\n/Parent 2 0 R\n"
        "/Resources << /ProcSet [/PDF /Text]\n/Font <<\n/F5 5 0 R\n/F35 6 0 R\n>>\n>>\n"
        "/Contents 3 0 R\n>>\nendobj\n"
        "8 0 obj\n<< /Length 9 0 R >>\nstream\n"
        "1 j\n2 J\n1.500 w\n1 0.502 0 rg\n1 0.502 0 RG\n"
        "q\n0.00 500.00 m 249.50 500.00 l 249.50 699.50 l 0.00 699.50 l h W n\n"
        "Q\nendstream\nendobj\n"
        "9 0 obj\n112\nendobj\n"
        "10 0 obj\n<<\n/Type /Page\n/MediaBox [0 0 500 700]\n/Parent 2 0 R\n"
        "/Resources << /ProcSet [/PDF /Text]\n/Font <<\n/F5 5 0 R\n/F35 6 0 R\n>>\n>>\n"
        "/Contents 8 0 R\n>>\nendobj\n"
        "2 0 obj\n<< /Type /Pages /Kids [\n7 0 R\n10 0 R\n] /Count 2\n>>\nendobj\n"
        "11 0 obj\n<< /Type /Outlines\n   /First 12 0 R\n   /Last 12 0 R\n   /Count 1\n>>\nendobj\n"
        "12 0 obj\n<< /Title (One)\n   /Parent 11 0 R\n   /Dest [7 0 R /XYZ 0 700 0]\n>>\nendobj\n"
        "1 0 obj\n<< /Type /Catalog /Pages 2 0 R\n   /Outlines 11 0 R\n   /PageMode "
        "/UseOutlines\n>>\nendobj\n"
        "13 0 obj\n<< /CreationDate (D:19700102000000)\n/Producer (KOLVEX 10.5)\n>>\nendobj\n";
    CHECK(same(got.substr(0, got.find("xref\n")), want));
    CHECK(offsets_hold(got));
    CHECK(got.compare(got.size() - 6, 6, "%%EOF\n") == 0);
    unsetenv("SOURCE_DATE_EPOCH");
}

// A page of more content than one stream buffer holds gets several
// compressed streams; memory output gives the file's bytes.
TEST(pdf_long_page_and_memory_output) {
    glbblk *b = open_pdf("long.pdf", true);
    qqmove(b, 0, 0);
    for (int i = 1; i < 60000; ++i) qqdraw(b, i % 1000, (i * 7) % 1400);
    qqflsh(b);
    kolfin();
    delglb();
    std::string file = testkit::read_file("long.pdf");
    CHECK(file.find("/Contents [\n3 0 R\n4 0 R\n") != std::string::npos);
    CHECK_EQ(count(file, "/Filter /FlateDecode\n"), 4);  // 960 kB of text in pieces of 300 kB
    CHECK(offsets_hold(file));

    b = open_pdf("long.pdf", true, true);
    qqmove(b, 0, 0);
    for (int i = 1; i < 60000; ++i) qqdraw(b, i % 1000, (i * 7) % 1400);
    qqflsh(b);
    kolfin();
    int n = pdfbuf(nullptr, 0);
    CHECK_EQ(n, (int)file.size());
    std::string mem((size_t)n, '\0');
    CHECK_EQ(pdfbuf(reinterpret_cast<unsigned char *>(&mem[0]), n - 1), 0);  // too small: kept
    CHECK_EQ(pdfbuf(reinterpret_cast<unsigned char *>(&mem[0]), n), n);
    CHECK(mem == file);
    CHECK_EQ(pdfbuf(reinterpret_cast<unsigned char *>(&mem[0]), n), 0);  // taken: empty
    delglb();
    unsetenv("SOURCE_DATE_EPOCH");
}

// Pieces of a long page compressed on a second thread reach the file in
// their order: the same bytes as one thread writes, for an odd and an even
// number of pieces, with an image between them.
TEST(pdf_pieces_on_a_second_thread) {
    std::string files[2];
    for (int pieces = 0; pieces < 2; ++pieces) {
        qqpdfpieces = pieces;
        glbblk *b = open_pdf("pieces.pdf", true);
        qqmove(b, 0, 0);
        for (int i = 1; i < 45000; ++i) qqdraw(b, i % 1000, (i * 7) % 1400);
        qqflsh(b);
        imgini();
        imgfin();
        for (int i = 1; i < 60000; ++i) qqdraw(b, (i * 3) % 1000, (i * 11) % 1400);
        qqflsh(b);
        newpag();
        for (int i = 1; i < 40000; ++i) qqdraw(b, (i * 13) % 1000, (i * 5) % 1400);
        qqflsh(b);
        kolfin();
        delglb();
        files[pieces] = testkit::read_file("pieces.pdf");
    }
    qqpdfpieces = 1;
    CHECK(files[0] == files[1]);
    CHECK_EQ(count(files[1], "/Subtype /Image"), 1);
    CHECK(count(files[1], "/Filter /FlateDecode\n") >= 8);
    CHECK(offsets_hold(files[1]));
    unsetenv("SOURCE_DATE_EPOCH");
}

// The width factor of the characters is the text object's horizontal
// scaling; a new factor opens a new object.
TEST(pdf_text_width_factor) {
    glbblk *b = open_pdf("wide.pdf", false);
    const DriverOps *drv = b->dev.drv;
    QQHwChar c = helvetica('A');
    c.wfac = 0.8;
    drv->character(b, &c);
    c.wfac = 1.5;
    drv->character(b, &c);
    kolfin();
    delglb();
    std::string got = testkit::read_file("wide.pdf");
    CHECK(got.find("BT\n/F5 25.0 Tf\n80 Tz\n1 0 0 1 50.00 199.50 Tm\n(A) Tj\nET\n"
                   "BT\n/F5 25.0 Tf\n150 Tz\n") != std::string::npos);
    unsetenv("SOURCE_DATE_EPOCH");
}

// Without the stream buffer the streams are written plain with an
// indirect length; without the deflate buffer plain with a direct one;
// memory output that cannot grow ends in warning 53 at pdfbuf.
TEST(pdf_fallbacks_without_memory) {
    qqpdfrealloc = test_realloc;
    failing_from = 300000;  // stream buffers fail
    glbblk *b = open_pdf("nobuf.pdf", true);
    qqmove(b, 0, 0);
    qqdraw(b, 100, 100);
    qqflsh(b);
    kolfin();
    delglb();
    std::string got = testkit::read_file("nobuf.pdf");
    CHECK(got.find("3 0 obj\n<< /Length 4 0 R >>\nstream\n") != std::string::npos);
    CHECK(got.find("/FlateDecode") == std::string::npos);
    CHECK(offsets_hold(got));

    failing_from = 0;
    calls = 0;
    failing_call =
        4;  // the record's tables and the stream buffer are had, the deflate output is not
    b = open_pdf("nozbuf.pdf", true);
    kolfin();
    delglb();
    got = testkit::read_file("nozbuf.pdf");
    CHECK(got.find("3 0 obj\n<< /Length 34 >>\nstream\n0.709 w\n2 J\n2 j\n0 0 0 rg\n0 0 0 "
                   "RG\nendstream") != std::string::npos);
    CHECK(offsets_hold(got));

    failing_call = 0;
    failing_from = 512001;  // memory output cannot grow beyond its first block
    b = open_pdf("x.pdf", false, true);
    qqmove(b, 0, 0);
    for (int i = 1; i < 60000; ++i) qqdraw(b, i % 1000, (i * 7) % 1400);
    qqflsh(b);
    kolfin();
    CHECK(pdfbuf(nullptr, 0) > 512000);
    unsigned char small[16];
    CHECK_EQ(pdfbuf(small, 16), 0);
    CHECK_EQ((int)b->diag.nwarn, 1);
    delglb();

    failing_from = 0;
    calls = 0;
    failing_call = 1;  // not even the object table
    b = open_pdf("none.pdf", true);
    CHECK_EQ((int)b->core.level, 0);
    CHECK(access("none.pdf", F_OK) != 0);
    delglb();
    failing_call = 0;
    qqpdfrealloc = [](void *old, size_t size) { return std::realloc(old, size); };
    unsetenv("SOURCE_DATE_EPOCH");
}

// The numbers of the format are printf's, ties and large values included.
TEST(pdf_numbers_as_printf) {
    const double fixed[] = {0.0,          -0.0,       0.125, 2.675,       1.005,  -0.001,
                            0.005,        999999.995, 1e6,   1e7 + 0.125, -2.5e9, 0.709,
                            0.7086614173, 552.755905, -1e15, -1e-300};
    unsigned long long seed = 12345;
    int bad = 0;
    for (int i = 0; i < 200000 + 16; ++i) {
        double v;
        if (i < 16) {
            v = fixed[i];
        } else {
            seed = seed * 6364136223846793005ULL + 1442695040888963407ULL;
            double u = (double)(seed >> 11) / 9007199254740992.0;
            // Exact ties of two and three decimals, and plain values of every size.
            v = i % 3 == 0 ? (double)(long long)(u * 2e6) / 1000.0 - 1000.0 + 0.0005
                           : (u - 0.5) * std::pow(10.0, (double)(i % 12) - 3);
        }
        for (int prec = 0; prec <= 3; ++prec) {
            char got[64], want[400];
            *pdfw_fix(got, v, prec) = '\0';
            std::snprintf(want, sizeof want, "%.*f", prec, v);
            if (std::strcmp(got, want) != 0 && ++bad < 5)
                std::fprintf(stderr, "%.17g prec %d: %s, printf %s\n", v, prec, got, want);
        }
    }
    CHECK_EQ(bad, 0);
    // A value beyond any page does not overrun the caller's line.
    char line[64];
    CHECK(pdfw_fix(line, 1e300, 3) - line <= 40);
}

// What a "Q" takes back (colours and width set inside the clip) is written
// again, so that the drawing after the clip keeps its state.
TEST(pdf_clip_keeps_the_state) {
    glbblk *b = open_pdf("clip.pdf", false);
    clpwin(0, 0, 500, 400);
    setrgb(1.0, 0.0, 0.0);
    linwid(3);
    clpwin(0, 0, 1000, 1400);  // the whole page: the clip ends
    qqmove(b, 0, 0);
    qqdraw(b, 10, 10);
    qqflsh(b);
    kolfin();
    delglb();
    std::string got = testkit::read_file("clip.pdf");
    CHECK(
        got.find("1 0 0 rg\n1 0 0 RG\n1.500 w\nQ\n1 0 0 RG\n1 0 0 rg\n1.500 w\n0.00 699.50 m\n") !=
        std::string::npos);
    unsetenv("SOURCE_DATE_EPOCH");
}
