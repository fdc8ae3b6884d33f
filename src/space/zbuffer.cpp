// Hidden surfaces: the z-buffer on raster output, the depth buffer that
// paints whole polygons far to near on vector output, and the triangle
// path that every shaded surface, solid and isosurface ends in.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "colour/colour.h"
#include "core/family.h"
#include "core/guard.h"
#include "core/keywords.h"
#include "core/warnings.h"
#include "devices/device.h"
#include "devices/registry.h"
#include "kolvex.h"
#include "plots/fill.h"
#include "raster/canvas.h"
#include "raster/primitives.h"
#include "raster/zbuffer.h"
#include "space/space.h"
#include "space/space_block.h"

namespace {

qqcanvas *pix_canvas(SpaceBlock *b) {
    return qqcanvasof(b);
}

// Plot to pixel position of the canvas in use.
void to_pix(SpaceBlock *b, double x, double y, double *px, double *py) {
    x += b->dev.nxsh;
    y += b->dev.nysh;
    if (b->cnv.owncnv) {
        const qqcanvas &cv = b->cnv.cv;
        double s = b->core.nxp > 0 ? (double)cv.cw / b->core.nxp : 1;
        double t = b->core.nyp > 0 ? (double)cv.ch / b->core.nyp : 1;
        *px = x * s;
        *py = y * t;
        return;
    }
    qqmapdown(b, x, y, px, py);
}

bool outside(const SpaceState &s, const double *p) {
    for (int i = 0; i < 3; ++i)
        if (!(std::fabs(p[i]) <= s.len[i] / 2)) return true;
    return false;
}

// One vertex of a polygon on its way through the clipping: position and colour.
struct V6 {
    double p[3], c[3];
};

// Sutherland-Hodgman against the six faces of the box; returns the count.
int clip_poly(const SpaceState &s, V6 *in, int n, V6 *tmp) {
    for (int face = 0; face < 6 && n >= 3; ++face) {
        int ax = face / 2;
        double lim = face % 2 ? s.len[ax] / 2 : -s.len[ax] / 2;
        auto inside = [&](const V6 &v) { return face % 2 ? v.p[ax] <= lim : v.p[ax] >= lim; };
        int m = 0;
        for (int i = 0; i < n; ++i) {
            const V6 &a = in[i], &b = in[(i + 1) % n];
            bool ia = inside(a), ib = inside(b);
            if (ia) tmp[m++] = a;
            if (ia != ib) {
                double d = b.p[ax] - a.p[ax];
                double t = std::fabs(d) < 1e-35 ? 0 : (lim - a.p[ax]) / d;
                V6 v;
                for (int k = 0; k < 3; ++k) {
                    v.p[k] = a.p[k] + t * (b.p[k] - a.p[k]);
                    v.c[k] = a.c[k] + t * (b.c[k] - a.c[k]);
                }
                v.p[ax] = lim;
                tmp[m++] = v;
            }
        }
        std::memcpy(in, tmp, sizeof(V6) * m);
        n = m;
    }
    return n;
}

bool eye_out(const double c[4]) {
    return c[0] + c[3] < 0 || c[3] - c[0] < 0 || c[1] + c[3] < 0 || c[3] - c[1] < 0 || c[2] < 0 ||
           c[3] - c[2] < 0;
}

void dbf_store(SpaceBlock *b, const double *xp, const double *yp, const double *dp, int n, int fill,
               int edge, int code) {
    SpaceState &s = b->sp;
    if (s.dn == s.dcap) {
        int cap = s.dcap + 10000;
        auto *np = (DepthPoly *)std::realloc(s.dpol, sizeof(DepthPoly) * (size_t)cap);
        if (!np) {
            qqwar0(b, 53);
            return;
        }
        s.dpol = np;
        s.dcap = cap;
    }
    if (s.dpn + 2 * n > s.dpcap) {
        long long cap = (long long)s.dpcap + 2 * 4 * 10000LL;
        if (cap > 0x3fffffff) {
            qqwar0(b, 53);
            return;
        }
        auto *np = (float *)std::realloc(s.dpts, sizeof(float) * (size_t)cap);
        if (!np) {
            qqwar0(b, 53);
            return;
        }
        s.dpts = np;
        s.dpcap = (int)cap;
    }
    double dsum = 0;
    for (int i = 0; i < n; ++i) {
        s.dpts[s.dpn + 2 * i] = (float)xp[i];
        s.dpts[s.dpn + 2 * i + 1] = (float)yp[i];
        dsum += dp[i];
    }
    DepthPoly &q = s.dpol[s.dn++];
    q.depth = (float)(dsum / n);
    q.first = s.dpn;
    q.n = n;
    q.fill = fill;
    q.edge = edge;
    q.code = code;
    s.dpn += 2 * n;
}

void fill_plot(SpaceBlock *b, const double *xp, const double *yp, int n, int clr) {
    if (b->clr.curclr != clr) qqsetc(b, clr);
    double x[16], y[16];
    for (int i = 0; i < n; ++i) {
        x[i] = xp[i];
        y[i] = yp[i];
    }
    qqflsh(b);
    if (!qqdevpoly(b, x, y, n)) qqpfill(b, x, y, n);
}

void outline(SpaceBlock *b, const double *xp, const double *yp, int n, int code) {
    if (code >= 1 && code <= n) {
        qqmove(b, xp[code - 1], yp[code - 1]);
        qqdraw(b, xp[code % n], yp[code % n]);
        return;
    }
    qqmove(b, xp[0], yp[0]);
    for (int i = 1; i < n; ++i) qqdraw(b, xp[i], yp[i]);
    qqdraw(b, xp[0], yp[0]);
}

}  // namespace

int qqzpix(const SpaceBlock *b) noexcept {
    return b->sp.zopen || b->cnv.imgact;
}

int qqzbfopen(SpaceBlock *b) noexcept {
    SpaceState &s = b->sp;
    if (s.zopen) {
        qqwar1(b, 120, "z-buffer is already in use");
        return 1;
    }
    int kind = qqdevkind(b);
    if (kind == QQ_KIND_FILE) {
        qqwar0(b, 40);
        return 1;
    }
    qqflsh(b);
    s.zimg = 0;
    if (!b->cnv.imgact) {
        if (kind == QQ_KIND_PAGE) {
            // The page is rendered as a picture of its own resolution.
            CanvasState &c = b->cnv;
            s.zsavsiz = c.imgsflg;
            s.zsiz[0] = c.imgsw[0];
            s.zsiz[1] = c.imgsw[1];
            const DeviceFamily *fam = qqfamily(b->core.devcod);
            // zbfscl pixels per point of the page whatever the device unit.
            double ds = b->sess.devscl > 0 ? b->sess.devscl : 1.0;
            double f = s.zscl * ds * (fam && fam->picscale > 0 ? fam->picscale : 1.0);
            c.imgsflg = 1;
            c.imgsw[0] = std::max(1, (int)std::lround(b->core.nxp * f));
            c.imgsw[1] = std::max(1, (int)std::lround(b->core.nyp * f));
        }
        imgini();
        if (!b->cnv.imgact) return 1;
        s.zimg = 1;
    }
    qqcanvas *cv = pix_canvas(b);
    if (!cv) return 1;
    qqcflush(cv);
    if (s.zact) {
        size_t n = (size_t)cv->cw * (size_t)cv->ch;
        float *z = (float *)std::malloc(n * sizeof(float) + 1);
        if (!z) {
            qqwar0(b, 53);
            if (s.zimg) imgfin();
            return 1;
        }
        std::fill(z, z + n, 2.0f);
        s.zbuf = z;
        s.zw = cv->cw;
        s.zh = cv->ch;
    }
    s.zopen = 1;
    return 0;
}

void qqzbfclose(SpaceBlock *b) noexcept {
    SpaceState &s = b->sp;
    if (!s.zopen) return;
    std::free(s.zbuf);
    s.zbuf = nullptr;
    s.zw = s.zh = 0;
    s.zopen = 0;
    if (s.zimg) {
        imgfin();
        if (qqdevkind(b) == QQ_KIND_PAGE) {
            b->cnv.imgsflg = s.zsavsiz;
            b->cnv.imgsw[0] = s.zsiz[0];
            b->cnv.imgsw[1] = s.zsiz[1];
        }
        s.zimg = 0;
    }
}

int qqdbfopen(SpaceBlock *b, long long ntri) noexcept {
    SpaceState &s = b->sp;
    if (s.dopen) {
        qqwar1(b, 120, "Depth buffer is already in use");
        return 1;
    }
    if (ntri < 10000) ntri = 10000;
    if (ntri > 50000000) ntri = 50000000;
    s.dpol = (DepthPoly *)std::malloc(sizeof(DepthPoly) * (size_t)ntri);
    s.dpts = (float *)std::malloc(sizeof(float) * 8 * (size_t)ntri);
    if (!s.dpol || !s.dpts) {
        std::free(s.dpol);
        std::free(s.dpts);
        s.dpol = nullptr;
        s.dpts = nullptr;
        qqwar0(b, 53);
        return 1;
    }
    s.dcap = (int)ntri;
    s.dpcap = (int)(8 * ntri);
    s.dn = s.dpn = 0;
    s.dopen = 1;
    return 0;
}

void qqdbfclose(SpaceBlock *b) noexcept {
    SpaceState &s = b->sp;
    if (!s.dopen) return;
    s.dopen = 0;
    // Sorted near to far, equal depths in their order of arrival, and painted
    // from the far end: among equal depths the first one ends on top.
    std::stable_sort(s.dpol, s.dpol + s.dn,
                     [](const DepthPoly &p, const DepthPoly &q) { return p.depth < q.depth; });
    qqflsh(b);
    int saved = b->clr.curclr;
    for (int i = s.dn - 1; i >= 0; --i) {
        const DepthPoly &q = s.dpol[i];
        double x[16], y[16];
        int n = std::min(q.n, 12);
        for (int k = 0; k < n; ++k) {
            x[k] = s.dpts[q.first + 2 * k];
            y[k] = s.dpts[q.first + 2 * k + 1];
        }
        fill_plot(b, x, y, n, q.fill);
        if (q.edge != -1) {
            qqsetc(b, q.edge);
            outline(b, x, y, n, q.code);
            qqflsh(b);
        }
    }
    std::free(s.dpol);
    std::free(s.dpts);
    s.dpol = nullptr;
    s.dpts = nullptr;
    s.dn = s.dcap = s.dpn = s.dpcap = 0;
    if (b->clr.curclr != saved) qqsetc(b, saved);
}

void qqzlin3(SpaceBlock *b, const double p0[3], const double p1[3]) noexcept {
    SpaceState &s = b->sp;
    double a[3] = {p0[0], p0[1], p0[2]}, e[3] = {p1[0], p1[1], p1[2]};
    if (s.clip == 0 && !qqclipbox(b, a, e)) return;
    double ca[4], ce[4];
    qqclip4(b, a, ca);
    qqclip4(b, e, ce);
    if (s.clip == 1 && (eye_out(ca) || eye_out(ce))) return;
    double xa, ya, za, xe, ye, ze;
    qqabs2plot(b, a[0], a[1], a[2], &xa, &ya, &za);
    qqabs2plot(b, e[0], e[1], e[2], &xe, &ye, &ze);
    to_pix(b, xa, ya, &xa, &ya);
    to_pix(b, xe, ye, &xe, &ye);
    qqflsh(b);
    qqcanvas *cv = pix_canvas(b);
    if (!cv) return;
    qqcflush(cv);
    qqczline(cv, s.zbuf, xa, ya, za, xe, ye, ze, s.zbias);
}

void qqtri3(SpaceBlock *b, const double *x, const double *y, const double *z, int n,
            const double *r, const double *g, const double *bl, int clr) noexcept {
    SpaceState &s = b->sp;
    if (n < 3 || n > 4) return;
    V6 v[24], tmp[24];
    bool out = false;
    for (int i = 0; i < n; ++i) {
        v[i].p[0] = x[i];
        v[i].p[1] = y[i];
        v[i].p[2] = z[i];
        v[i].c[0] = r[i];
        v[i].c[1] = g[i];
        v[i].c[2] = bl[i];
        if (!std::isfinite(x[i]) || !std::isfinite(y[i]) || !std::isfinite(z[i])) return;
        if (s.clip == 0 && outside(s, v[i].p)) out = true;
    }
    // The PLY record takes the polygon as given; drawing goes on.
    if (s.plymode) qqplypoly(b, x, y, z, n, r, g, bl, clr);
    if (out) n = clip_poly(s, v, n, tmp);
    if (n < 3) return;
    double xp[24], yp[24], dp[24];
    for (int i = 0; i < n; ++i) {
        double c[4];
        qqclip4(b, v[i].p, c);
        if (s.clip == 1 && eye_out(c)) return;
        double w = std::fabs(c[3]) < 1e-30 ? 1e-30 : c[3];
        xp[i] = s.cx + s.s * c[0] / w;
        yp[i] = s.cy - s.s * c[1] / w;
        dp[i] = c[2] / w;
    }
    bool mesh = s.mesh == 1 || s.mesh == 2;
    if (s.dopen && s.dact && !qqzpix(b)) {
        dbf_store(b, xp, yp, dp, n, clr, mesh ? s.curmesh : -1, s.edgecode);
        return;
    }
    if (qqzpix(b)) {
        qqflsh(b);
        qqcanvas *cv = pix_canvas(b);
        if (!cv) return;
        qqcflush(cv);
        QQZVert t[24];
        for (int i = 0; i < n; ++i) {
            to_pix(b, xp[i], yp[i], &t[i].x, &t[i].y);
            t[i].z = dp[i];
            t[i].r = v[i].c[0];
            t[i].g = v[i].c[1];
            t[i].b = v[i].c[2];
        }
        int alpha = b->cnv.tprlvl > 0 ? b->cnv.tpralpha : 255;
        // The fan: the first triangle as given, then each next vertex
        // replaces the second and the third vertex in turn.
        QQZVert tri[3] = {t[0], t[1], t[2]};
        qqcrast(cv, s.zbuf, tri, alpha);
        for (int i = 3; i < n; ++i) {
            tri[i % 2 ? 1 : 2] = t[i];
            qqcrast(cv, s.zbuf, tri, alpha);
        }
        if (mesh) {
            int saved = b->clr.curclr;
            if (s.curmesh != saved) qqsetc(b, s.curmesh);
            float bias = s.zbias;
            s.zbias = 0.001f;
            int k = s.edgecode;
            for (int i = 0; i < n; ++i) {
                if (k >= 1 && k <= n && i != k - 1) continue;
                qqzlin3(b, v[i].p, v[(i + 1) % n].p);
            }
            s.zbias = bias;
            if (s.curmesh != saved) qqsetc(b, saved);
        }
        return;
    }
    int saved = b->clr.curclr;
    fill_plot(b, xp, yp, n, clr);
    if (mesh) {
        qqsetc(b, s.curmesh);
        outline(b, xp, yp, n, s.edgecode);
        qqflsh(b);
    }
    if (b->clr.curclr != saved) qqsetc(b, saved);
}

// ---------------------------------------------------------------------------
// Public routines.

int zbfini() noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("zbfini"));
    if (!b) return 1;
    return qqzbfopen(b);
}

void zbffin() noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("zbffin"));
    if (!b) return;
    if (!b->sp.zopen) {
        qqwar1(b, 115, "No initialization of z-buffer");
        return;
    }
    qqzbfclose(b);
}

void zbfres() noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("zbfres"));
    if (!b) return;
    SpaceState &s = b->sp;
    if (!s.zopen) {
        qqwar1(b, 115, "No initialization of z-buffer");
        return;
    }
    if (s.zbuf) std::fill(s.zbuf, s.zbuf + (size_t)s.zw * s.zh, 2.0f);
}

void zbfers() noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("zbfers"));
    if (!b) return;
    if (!b->sp.zopen) {
        qqwar1(b, 115, "No initialization of z-buffer");
        return;
    }
    qqflsh(b);
    if (qqcanvas *cv = pix_canvas(b)) {
        qqcflush(cv);
        qqcerase(cv);
    }
}

void zbfmod(const char *copt) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("zbfmod"));
    if (!b) return;
    int k = qqkey(b, "OFF +ON  ", 2, copt);
    if (k > 0) b->sp.zact = k - 1;
}

void zbfscl(double x) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("zbfscl"));
    if (!b) return;
    if (!(x >= 1 && x <= 10)) {
        qqwarnd(b, 2, x);
        return;
    }
    b->sp.zscl = x;
}

void zbftri(const double *xray, const double *yray, const double *zray, const int *iclr) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("zbftri"));
    if (!b) return;
    if (!b->sp.open) {
        qqwar0(b, 35);
        return;
    }
    if (!b->sp.zopen) {
        qqwar1(b, 115, "No initialization of z-buffer");
        return;
    }
    double x[3], y[3], z[3], r[3], g[3], bl[3];
    for (int i = 0; i < 3; ++i) {
        x[i] = qqusr2abs(b, 0, xray[i]);
        y[i] = qqusr2abs(b, 1, yray[i]);
        z[i] = qqusr2abs(b, 2, zray[i]);
        int ri, gi, bi;
        qqclrrgb(b, iclr[i], &ri, &gi, &bi);
        r[i] = ri / 255.0;
        g[i] = gi / 255.0;
        bl[i] = bi / 255.0;
    }
    int mesh = b->sp.mesh;
    b->sp.mesh = 0;
    qqtri3(b, x, y, z, 3, r, g, bl, iclr[0]);
    b->sp.mesh = mesh;
}

void zbflin(double x1, double y1, double z1, double x2, double y2, double z2) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("zbflin"));
    if (!b) return;
    SpaceState &s = b->sp;
    if (!s.open) {
        qqwar0(b, 35);
        return;
    }
    if (!s.zopen) {
        qqwar1(b, 115, "No initialization of z-buffer");
        return;
    }
    double p0[3] = {qqusr2abs(b, 0, x1), qqusr2abs(b, 1, y1), qqusr2abs(b, 2, z1)};
    double p1[3] = {qqusr2abs(b, 0, x2), qqusr2abs(b, 1, y2), qqusr2abs(b, 2, z2)};
    float bias = s.zbias;
    s.zbias = 1e-5f;
    qqzlin3(b, p0, p1);
    s.zbias = bias;
}

int dbfini() noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("dbfini"));
    if (!b) return 1;
    return qqdbfopen(b, 0);
}

void dbffin() noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("dbffin"));
    if (!b) return;
    if (!b->sp.dopen) {
        qqwar1(b, 115, "No initialization of depth buffer");
        return;
    }
    qqdbfclose(b);
}

void dbfmod(const char *copt) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("dbfmod"));
    if (!b) return;
    int k = qqkey(b, "OFF +ON  ", 2, copt);
    if (k > 0) b->sp.dact = k - 1;
}
