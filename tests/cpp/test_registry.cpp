// The registry of device families, and every operation that a family
// offers reached from the routines above the layer.
#include <cstring>
#include <string>
#include <unistd.h>

#include "core/guard.h"
#include "devices/device.h"
#include "devices/registry.h"
#include "glbblk.h"
#include "kolvex.h"
#include "raster/canvas.h"
#include "testkit.h"

TEST(families_own_disjoint_codes_and_unique_keywords) {
    int n;
    const DeviceFamily *const *fams = qqfamilies(&n);
    for (int i = 0; i < n; ++i) {
        const DeviceFamily *f = fams[i];
        for (const DeviceKey *k = f->keys; k->key; ++k) {
            CHECK(k->code >= f->lo && k->code <= f->hi);
            CHECK_EQ(std::strlen(k->key), 4u);
            int code;
            CHECK(qqfamilykey(k->key, &code) == f && code == k->code);
            // The code finds its family, unless the family stands aside
            // for another at metafl.
            if (!f->absent) CHECK(qqfamily(k->code) == f);
        }
        if (f->absent) {
            int code;
            CHECK(qqfamilykey(f->instead, &code) != nullptr);
        }
        CHECK(f->kind >= QQ_KIND_SCREEN && f->kind <= QQ_KIND_RASTER);
        // A family with a file has a line buffer or opens its file itself.
        if (f->ops && f->kind != QQ_KIND_RASTER && f->kind != QQ_KIND_SCREEN)
            CHECK(f->lnlen > 0 || (f->file & QQ_FILE_OWN) || f->ops->open);
    }
}

namespace {

// A proxy of the session's driver: each operation records that it was
// reached, then runs the driver's own.
const DriverOps *real;
std::string reached;

void mark(const char *op) {
    if (reached.find(std::string(op) + " ") == std::string::npos) reached += std::string(op) + " ";
}

const DriverOps proxy = {
    .line = [](DeviceBlock *b, double x, double y,
               int op) { mark("line"), real->line(b, x, y, op); },
    .colour = [](DeviceBlock *b, int v, int r, int g, int bl,
                 int i) { mark("colour"), real->colour(b, v, r, g, bl, i); },
    .colour_table = [](DeviceBlock *b) { mark("colour_table"), real->colour_table(b); },
    .width = [](DeviceBlock *b, double n, int f) { return mark("width"), real->width(b, n, f); },
    .linestyle = [](DeviceBlock *b) { mark("linestyle"), real->linestyle(b); },
    .clip = [](DeviceBlock *b, int x1, int y1, int x2, int y2,
               int r) { mark("clip"), real->clip(b, x1, y1, x2, y2, r); },
    .fill_polygon = [](DeviceBlock *b, const double *x, const double *y,
                       int n) { return mark("fill_polygon"), real->fill_polygon(b, x, y, n); },
    .fill_rect = [](DeviceBlock *b, int x1, int y1, int x2, int y2,
                    int c) { mark("fill_rect"), real->fill_rect(b, x1, y1, x2, y2, c); },
    .new_page = [](DeviceBlock *b) { mark("new_page"), real->new_page(b); },
    .clear = [](DeviceBlock *b) { mark("clear"), real->clear(b); },
    .update = [](DeviceBlock *b) { mark("update"), real->update(b); },
    .close = [](DeviceBlock *b) { return mark("close"), real->close(b); },
    .marker = [](DeviceBlock *b, int k, double x, double y,
                 double s) { return mark("marker"), real->marker(b, k, x, y, s); },
    .image = [](DeviceBlock *b) { mark("image"), real->image(b); },
    .character = [](DeviceBlock *b,
                    const QQHwChar *c) { return mark("character"), real->character(b, c); },
    .textstyle = [](DeviceBlock *b) { mark("textstyle"), real->textstyle(b); },
    .sector = [](DeviceBlock *b, double x, double y, double r1, double r2, double a1, double a2,
                 int c) { return mark("sector"), real->sector(b, x, y, r1, r2, a1, a2, c); },
    .triangle = [](DeviceBlock *b, const double *x,
                   const double *y) { return mark("triangle"), real->triangle(b, x, y); },
};

// The proxy of a driver offers what the driver offers, no more.
DriverOps proxy_of(const DriverOps *d) {
    DriverOps p = proxy;
#define KEEP(m) \
    if (!d->m) p.m = nullptr
    KEEP(line); KEEP(colour); KEEP(colour_table); KEEP(width); KEEP(linestyle); KEEP(clip);
    KEEP(fill_polygon); KEEP(fill_rect); KEEP(new_page); KEEP(clear); KEEP(update); KEEP(close);
    KEEP(marker); KEEP(image); KEEP(character); KEEP(textstyle); KEEP(sector); KEEP(triangle);
#undef KEEP
    return p;
}

// The operations a driver offers, by name, the way the proxy names them.
std::string offered(const DriverOps *d) {
    std::string s;
    const struct {
        const char *name;
        bool on;
    } ops[] = {{"line", d->line != nullptr},        {"colour", d->colour != nullptr},
               {"colour_table", d->colour_table != nullptr}, {"width", d->width != nullptr},
               {"linestyle", d->linestyle != nullptr}, {"clip", d->clip != nullptr},
               {"fill_polygon", d->fill_polygon != nullptr}, {"fill_rect", d->fill_rect != nullptr},
               {"new_page", d->new_page != nullptr}, {"clear", d->clear != nullptr},
               {"update", d->update != nullptr},       {"close", d->close != nullptr},
               {"marker", d->marker != nullptr},       {"image", d->image != nullptr},
               {"character", d->character != nullptr}, {"textstyle", d->textstyle != nullptr},
               {"sector", d->sector != nullptr},       {"triangle", d->triangle != nullptr}};
    for (const auto &o : ops)
        if (o.on) s += std::string(o.name) + " ";
    return s;
}

}  // namespace

// Rectangles, sectors, triangles, markers and characters come from
// subsystems that are not built yet (area fill, pies, symbols, text): their
// layer entry points stand in.
TEST(every_offered_operation_is_reached_from_above_the_layer) {
    std::string dir = testkit::temp_dir();
    if (chdir(dir.c_str()) != 0) return;
    int n;
    const DeviceFamily *const *fams = qqfamilies(&n);
    for (int i = 0; i < n; ++i) {
        const DeviceFamily *f = fams[i];
        if (!f->ops) continue;
        filmod("DELE");
        metafl(f->keys[0].key);
        kolini();
        glbblk *b = qqglbblk(qqcur());
        CHECK_EQ(b->core.level, 1u);
        b->diag.outu = 0;
        real = b->dev.drv;
        reached = "";
        static DriverOps active;
        active = proxy_of(real);
        b->dev.drv = &active;
        linwid(5);
        lncap("ROUN");
        clpwin(10, 10, 2000, 1500);
        setvlt("SPEC");
        color("RED");
        pagera();
        qqfrect(b, 100, 100, 300, 200, 0x0100FF00);
        qqmark(b, 3, 500, 500, 40);
        qqsector(b, 900, 900, 50, 150, 10, 120, 0x010000FF);
        const double tx[3] = {1000, 1200, 1100}, ty[3] = {1000, 1000, 1200};
        qqtriangle(b, tx, ty);
        QQHwChar c{65, 800, 800, 30, 0, 0, 40, 0, 0, 718};
        qqhwchar(b, &c);
        qqhwstyle(b);
        erase();
        sendbf();
        newpag();
        imgini();
        imgfin();
        // A picture that a colour plot paints and hands to the layer, on
        // the formats without an image mode of their own.
        if (f->kind != QQ_KIND_PAGE && f->kind != QQ_KIND_RASTER && !b->cnv.cv.pix &&
            qqcnvnew(&b->cnv.cv, 4, 3, 0, 0) == 0) {
            b->cnv.embed(b);
            qqcnvfree(&b->cnv.cv);
        }
        kolfin();
        std::string want = offered(real);
        // The layer's entry of filled polygons comes with the area fill.
        size_t fp = want.find("fill_polygon ");
        if (fp != std::string::npos) want.erase(fp, 13);
        for (size_t p = 0; p < want.size();) {
            size_t e = want.find(' ', p);
            std::string op = want.substr(p, e - p);
            if (reached.find(op + " ") == std::string::npos)
                testkit::fail(__FILE__, __LINE__, std::string(f->name) + ": " + op + " not reached");
            p = e + 1;
        }
    }
}
