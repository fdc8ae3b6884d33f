// The PostScript export of a picture (qqwrite format 8): one page that
// holds the image alone, scaled to the paper and turned a quarter when it
// is wider than high.  Device units of 0.05 mm as in the page files; the
// image data as hex digits, 80 to a line.
#include <cstdio>
#include <cstdlib>

#include "core/numfmt.h"
#include "raster/image_out.h"

namespace raster {

namespace {

constexpr double kPoints = 0.1417322835;  // points per device unit

// "%.3f" without the locale.
void fixed3(Sink &s, double v) {
    char t[48];
    qqfmtf(t, (int)sizeof t, v, 1, 3);
    s.text(t);
}

}  // namespace

int write_ps(Sink &s, const Picture &p, const WriteOptions &o) {
    unsigned char *row = static_cast<unsigned char *>(std::malloc((size_t)p.w * 3));
    if (!row) return -2;
    double ox = o.psorg[0], oy = o.psorg[1], p1 = o.pspaper[0], p2 = o.pspaper[1];
    char t[160];
    s.text("%!PS-Adobe-2.0\n");
    std::snprintf(t, sizeof t, "%s %d %d %d %d\n", "%%BoundingBox: ", (int)(ox * kPoints),
                  (int)(oy * kPoints), (int)((p1 + ox) * kPoints + 1.0), (int)((p2 + oy) * kPoints + 1.0));
    s.text(t);
    s.text("%%Creator: KOLVEX  10.3\n");
    fixed3(s, ox * kPoints);
    s.text(" ");
    fixed3(s, oy * kPoints);
    s.text(" translate \n/DeviceRGB setcolorspace\n");
    bool wide = p.w > p.h;
    s.text("gsave ");
    fixed3(s, wide ? p1 * kPoints : 0.0);
    s.text(" 0 translate \n");
    if (wide) {
        s.text("90 rotate\n");
        double q = p1;
        p1 = p2;
        p2 = q;
    }
    double f = p1 / p.w < p2 / p.h ? p1 / p.w : p2 / p.h;
    fixed3(s, p.w * f * kPoints);
    s.text(" ");
    fixed3(s, p.h * f * kPoints);
    s.text(" scale \n<<\n/ImageType 1\n");
    std::snprintf(t, sizeof t,
                  "/Width %d\n/Height %d\n/BitsPerComponent 8\n/Decode [0 1 0 1 0 1]\n"
                  "/ImageMatrix [%d 0 0 %d 0 %d]\n",
                  p.w, p.h, p.w, -p.h, p.h);
    s.text(t);
    s.text("/DataSource currentfile /ASCIIHexDecode filter\n>> image\n");
    static const char kHex[] = "0123456789ABCDEF";
    char line[81];
    int n = 0;
    bool first = true;
    for (int y = 0; y < p.h; ++y) {
        p.rgb_row(y, row);
        for (int i = 0; i < 3 * p.w; ++i) {
            if (n == 80) {
                if (!first) s.put("\n", 1);
                s.put(line, 80);
                first = false;
                n = 0;
            }
            line[n++] = kHex[row[i] >> 4];
            line[n++] = kHex[row[i] & 15];
        }
    }
    if (n > 0) {
        if (!first) s.put("\n", 1);
        s.put(line, (size_t)n);
    }
    s.text("\n> grestore showpage\n");
    std::free(row);
    return 0;
}

}  // namespace raster
