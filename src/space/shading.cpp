// Shaded surfaces: the light model, the material, the mesh settings and
// the surface routines that turn a grid or a triangle list into polygons
// for the triangle path.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "axes/axes.h"
#include "colour/colour.h"
#include "core/family.h"
#include "core/guard.h"
#include "core/keywords.h"
#include "core/subsystems.h"
#include "core/warnings.h"
#include "devices/device.h"
#include "kolvex.h"
#include "plots/fill.h"
#include "plots/patterns.h"
#include "plots/zscale.h"
#include "raster/canvas.h"
#include "space/space.h"
#include "space/space_block.h"

namespace {

const double kPi = 3.1415927;

void defaults(CoreBlock *blk) {
    SpaceBlock *b = qqspcblk(blk);
    SpaceState &s = b->sp;
    std::free(s.zbuf);
    std::free(s.dpol);
    std::free(s.dpts);
    qqplyfree(b);
    s = SpaceState{};
    s.len[0] = s.len[1] = s.len[2] = 2;
    s.vang = 0.24497869610786438;
    s.vnear = 1.0;
    s.vfar = -1.0;
    s.oscl = 1.0;
    s.flab = 1;
    s.zact = 1;
    s.dact = 1;
    s.zscl = 1.5;
    s.zbias = 0.001f;
    s.cull = 1;
    s.mshclr[0] = s.mshclr[1] = -1;
    s.side = 2;
    s.surclr[0] = s.surclr[1] = -1;
    for (int k = 0; k < 8; ++k) {
        Light3 &l = s.lit[k];
        l.on = k == 0;
        l.pos[0] = 4;
        l.pos[1] = -5;
        l.pos[2] = 4;
        l.mode = 1;
        for (int c = 0; c < 3; ++c) l.at[c] = l.pos[c];
        for (int c = 0; c < 3; ++c) {
            l.amb[c] = 0;
            l.dif[c] = 1;
            l.spc[c] = 1;
        }
        l.att[0] = 1;
    }
    for (auto &m : s.mat) {
        for (int c = 0; c < 3; ++c) {
            m.amb[c] = 0.20000000298023224;
            m.dif[c] = 0.800000011920929;
            m.spc[c] = 0;
        }
        m.expo = 0;
    }
    for (double &c : s.scene) c = 0.20000000298023224;
}

void on_endgrf(AxesBlock *ab) {
    SpaceBlock *b = qqspcblk(ab);
    // endgrf inside a plane ends only the 2-D system drawn there.
    if (b->sp.plane) return;
    b->sp.open = 0;
    b->dev.pl3on = 0;
}

// The X and Y ends of the open 3-D axis system, for getmat's grid.
int xy_ends(const FieldBlock *fb, double a[2], double e[2], int log[2]) {
    const SpaceState &s = qqspcblk(fb)->sp;
    if (!s.open) return 0;
    for (int k = 0; k < 2; ++k) {
        a[k] = s.a[k];
        e[k] = s.e[k];
        log[k] = s.logax[k] != 0;
    }
    return 1;
}

void space_init(CoreBlock *blk) {
    SpaceBlock *b = qqspcblk(blk);
    defaults(b);
    qqaxhook(b, on_endgrf);
    b->cpl.xyends3d = xy_ends;
}

void space_release(CoreBlock *blk) {
    SpaceBlock *b = qqspcblk(blk);
    SpaceState &s = b->sp;
    std::free(s.zbuf);
    std::free(s.dpol);
    std::free(s.dpts);
    s.zbuf = nullptr;
    s.dpol = nullptr;
    s.dpts = nullptr;
    qqplyfree(b);
}

void space_end(CoreBlock *blk) {
    SpaceBlock *b = qqspcblk(blk);
    qqdbfclose(b);
    qqzbfclose(b);
    // A record that plyfin never wrote dies with the session.
    qqplyfree(b);
}

void sides(SpaceBlock *b, int *lo, int *hi) {
    int s = b->sp.side;
    *lo = s == 1 ? 1 : 0;
    *hi = s == 0 ? 0 : 1;
}

bool negative(SpaceBlock *b, double v) {
    if (v < 0) {
        qqwar0(b, 1);
        return true;
    }
    return false;
}

bool light_index(SpaceBlock *b, int k) {
    if (k < 1 || k > 8) {
        qqwarn(b, 2, k);
        return false;
    }
    return true;
}

// ---------------------------------------------------------------------------
// The cell pass.

bool finite3(const double *p) {
    return std::isfinite(p[0]) && std::isfinite(p[1]) && std::isfinite(p[2]);
}

struct Grid {
    const double *x, *y, *z, *c;  // c: colour values, or z
    int n, m;
    int full;  // 1: x and y hold a value per grid point, as z does
    // Curved mesh lines: k - 2 points inside each mesh line between two
    // neighbouring grid points, user coordinates x, y, z in a row.  ep for
    // the line from (i, j) to (i + 1, j) at ((i * m + j) * (k - 2)) * 3,
    // eq for the line from (i, j) to (i, j + 1) at ((i * (m - 1) + j) *
    // (k - 2)) * 3.  Null for straight mesh lines.
    const double *ep, *eq;
    int k;
};

void absp(SpaceBlock *b, const Grid &g, int i, int j, double p[3]) {
    size_t at = (size_t)i * g.m + j;
    p[0] = qqusr2abs(b, 0, g.full ? g.x[at] : g.x[i]);
    p[1] = qqusr2abs(b, 1, g.full ? g.y[at] : g.y[j]);
    p[2] = qqusr2abs(b, 2, g.z[at]);
}

// One curved mesh line from corner a to corner e through the k - 2 user
// points at mid, with the 3-D pen (depth tested on a z-buffer).
void curved_line(SpaceBlock *b, const double *a, const double *e, const double *mid, int k) {
    qqmov3(b, a[0], a[1], a[2]);
    for (int t = 0; t < k - 2; ++t) {
        const double *u = mid + 3 * t;
        double p[3] = {qqusr2abs(b, 0, u[0]), qqusr2abs(b, 1, u[1]), qqusr2abs(b, 2, u[2])};
        if (finite3(p)) qqdrw3(b, p[0], p[1], p[2]);
    }
    qqdrw3(b, e[0], e[1], e[2]);
}

// The four mesh lines of cell (i, j) as curves; P holds its corners.
void curved_cell(SpaceBlock *b, const Grid &g, int i, int j, const double P[4][3]) {
    int k = g.k;
    size_t w = (size_t)(k - 2) * 3;
    curved_line(b, P[0], P[1], g.ep + ((size_t)i * g.m + j) * w, k);
    curved_line(b, P[1], P[2], g.eq + ((size_t)(i + 1) * (g.m - 1) + j) * w, k);
    curved_line(b, P[3], P[2], g.ep + ((size_t)i * g.m + j + 1) * w, k);
    curved_line(b, P[0], P[3], g.eq + ((size_t)i * (g.m - 1) + j) * w, k);
    qqflsh(b);
}

void normal(const double *p1, const double *p2, const double *p3, int back, double n[3]) {
    if (back) std::swap(p1, p3);
    double a[3] = {p2[0] - p1[0], p2[1] - p1[1], p2[2] - p1[2]};
    double c[3] = {p3[0] - p2[0], p3[1] - p2[1], p3[2] - p2[2]};
    n[0] = a[1] * c[2] - a[2] * c[1];
    n[1] = a[2] * c[0] - a[0] * c[2];
    n[2] = a[0] * c[1] - a[1] * c[0];
    double l = std::sqrt(n[0] * n[0] + n[1] * n[1] + n[2] * n[2]);
    if (l > 1e-35)
        for (int k = 0; k < 3; ++k) n[k] /= l;
}

// 1 when the face turns away from the eye, else 2.
int facing(const SpaceBlock *b, const double *p1, const double *p2, const double *p3, int back) {
    const SpaceState &s = b->sp;
    double n[3];
    normal(p1, p2, p3, back, n);
    double v[3];
    if (s.proj == 1) {
        v[0] = s.fx - s.ex;
        v[1] = s.fy - s.ey;
        v[2] = s.fz - s.ez;
    } else {
        v[0] = (p1[0] + p3[0]) / 2 - s.ex;
        v[1] = (p1[1] + p3[1]) / 2 - s.ey;
        v[2] = (p1[2] + p3[2]) / 2 - s.ez;
    }
    return v[0] * n[0] + v[1] * n[1] + v[2] * n[2] > 0 ? 1 : 2;
}

void rgb_of(SpaceBlock *b, int clr, double c[3]) {
    int r, g, bl;
    qqclrrgb(b, clr, &r, &g, &bl);
    c[0] = r / 255.0;
    c[1] = g / 255.0;
    c[2] = bl / 255.0;
}

// The light at grid corner (i, j) with the normal of cell (ci, cj).
bool cell_normal(SpaceBlock *b, const Grid &g, int ci, int cj, int back, double n[3]) {
    if (ci < 0 || cj < 0 || ci >= g.n - 1 || cj >= g.m - 1) return false;
    double p0[3], p1[3], p2[3];
    absp(b, g, ci, cj, p0);
    absp(b, g, ci + 1, cj, p1);
    absp(b, g, ci + 1, cj + 1, p2);
    if (!finite3(p0) || !finite3(p1) || !finite3(p2)) return false;
    normal(p0, p1, p2, back, n);
    return true;
}

// The flat fill colour of a pass: the current colour; the background for
// a mesh alone; with surclr and no lights, the colour of the side drawn.
int flat_colour(SpaceBlock *b, double rgb[3]) {
    const SpaceState &s = b->sp;
    int clr = b->clr.curclr;
    if (s.mesh == 2) {
        clr = b->clr.bckclr;
        // Lit pixels on a white page pass the swap of black and white.
        if (s.lights && b->sess.bgmode == 2 && qqzpix(b) && (clr == 0 || clr == 255))
            clr = 255 - clr;
    }
    if (s.surclrset && !s.lights && s.surclr[0] != -1) clr = s.surclr[0];
    rgb_of(b, clr, rgb);
    return clr;
}

// Mesh "LINE" or "POIN": the polygon's edges or corners in the mesh colour.
void mesh_marks(SpaceBlock *b, const double (*P)[3], int n) {
    SpaceState &s = b->sp;
    if (s.curmesh != b->clr.curclr) qqsetc(b, s.curmesh);
    for (int k = 0; k < n; ++k) {
        const double *a = P[k], *e = s.mesh == 3 ? P[(k + 1) % n] : P[k];
        qqmov3(b, a[0], a[1], a[2]);
        qqdrw3(b, e[0], e[1], e[2]);
    }
    qqflsh(b);
}

// The one colour number of a polygon for output without pixels: the z
// colour of its mean value without lights, the flat colour where that
// serves, else the nearest colour of the mean of its corners' colours.
int polygon_colour(SpaceBlock *b, int flatclr, double mean, const double *r, const double *g,
                   const double *bl, int n) {
    const SpaceState &s = b->sp;
    if (!s.lights && s.mesh != 2 && s.zsca == 0) return qqzclr(b, mean);
    if (s.mesh == 2 || (!s.lights && s.zsca == 1)) return flatclr;
    double mr = 0, mg = 0, mb = 0;
    for (int k = 0; k < n; ++k) {
        mr += r[k] / n;
        mg += g[k] / n;
        mb += bl[k] / n;
    }
    return qqnearest(b, (int)(mr * 255 + 0.5), (int)(mg * 255 + 0.5), (int)(mb * 255 + 0.5));
}

void cell_pass(SpaceBlock *b, const Grid &g, int back) {
    SpaceState &s = b->sp;
    int savclr = b->clr.curclr;
    s.curmesh = s.mshclr[0] == -1 ? savclr : s.mshclr[0];
    bool lights = s.lights != 0;
    bool smooth = s.shade == 1;
    bool pix = qqzpix(b) != 0;
    double flat[3];
    int flatclr = flat_colour(b, flat);
    // Curved mesh lines replace the straight ones where they can be drawn
    // at once: lines alone, or edges on pixels (a depth buffer would paint
    // its polygons over them later).
    bool curved = g.ep && (s.mesh == 3 || ((s.mesh == 1 || s.mesh == 2) && pix));
    for (int i = 0; i + 1 < g.n; ++i)
        for (int j = 0; j + 1 < g.m; ++j) {
            int ci[4] = {i, i + 1, i + 1, i}, cj[4] = {j, j, j + 1, j + 1};
            double P[4][3];
            bool ok = true;
            for (int k = 0; k < 4 && ok; ++k) {
                absp(b, g, ci[k], cj[k], P[k]);
                ok = finite3(P[k]) && std::isfinite(g.c[(size_t)ci[k] * g.m + cj[k]]);
            }
            if (!ok) continue;  // a hole in the surface
            if (s.cull != 0 && facing(b, P[0], P[1], P[2], back) == s.cull) continue;
            if (s.mesh == 3 && curved) {
                if (s.curmesh != b->clr.curclr) qqsetc(b, s.curmesh);
                curved_cell(b, g, i, j, P);
                continue;
            }
            if (s.mesh == 3 || s.mesh == 4) {
                mesh_marks(b, P, 4);
                continue;
            }
            double r[4], gg[4], bl[4];
            double val[4];
            for (int k = 0; k < 4; ++k) val[k] = g.c[(size_t)ci[k] * g.m + cj[k]];
            if (s.mesh == 2) {
                for (int k = 0; k < 4; ++k) {
                    r[k] = flat[0];
                    gg[k] = flat[1];
                    bl[k] = flat[2];
                }
            } else if (!lights) {
                if (s.zsca == 1) {
                    for (int k = 0; k < 4; ++k) {
                        r[k] = flat[0];
                        gg[k] = flat[1];
                        bl[k] = flat[2];
                    }
                } else if (smooth) {
                    for (int k = 0; k < 4; ++k) qqzrgb(b, val[k], &r[k], &gg[k], &bl[k]);
                } else {
                    double mean = (val[0] + val[1] + val[2] + val[3]) / 4, c[3];
                    qqzrgb(b, mean, &c[0], &c[1], &c[2]);
                    for (int k = 0; k < 4; ++k) {
                        r[k] = c[0];
                        gg[k] = c[1];
                        bl[k] = c[2];
                    }
                }
            } else {
                double nf[3];
                normal(P[0], P[1], P[2], back, nf);
                double acc[3] = {0, 0, 0};
                for (int k = 0; k < 4; ++k) {
                    double dif[3], *dp = nullptr;
                    if (s.zsca == 0) {
                        qqzrgb(b, val[k], &dif[0], &dif[1], &dif[2]);
                        dp = dif;
                    }
                    double out[3] = {0, 0, 0};
                    if (smooth) {
                        int cnt = 0;
                        for (int di = -1; di <= 0; ++di)
                            for (int dj = -1; dj <= 0; ++dj) {
                                double nn[3], o[3];
                                if (!cell_normal(b, g, ci[k] + di, cj[k] + dj, back, nn)) continue;
                                qqlight(b, P[k], nn, back, dp, o);
                                for (int q = 0; q < 3; ++q) out[q] += o[q];
                                ++cnt;
                            }
                        if (cnt)
                            for (double &q : out) q /= cnt;
                    } else {
                        qqlight(b, P[k], nf, back, dp, out);
                    }
                    r[k] = out[0];
                    gg[k] = out[1];
                    bl[k] = out[2];
                    for (int q = 0; q < 3; ++q) acc[q] += out[q];
                }
                if (!smooth)
                    for (int k = 0; k < 4; ++k) {
                        r[k] = acc[0] / 4;
                        gg[k] = acc[1] / 4;
                        bl[k] = acc[2] / 4;
                    }
            }
            int clr = pix ? savclr
                          : polygon_colour(b, flatclr, (val[0] + val[1] + val[2] + val[3]) / 4, r,
                                           gg, bl, 4);
            double X[4], Y[4], Z[4];
            for (int k = 0; k < 4; ++k) {
                X[k] = P[k][0];
                Y[k] = P[k][1];
                Z[k] = P[k][2];
            }
            if (!curved) {
                qqtri3(b, X, Y, Z, 4, r, gg, bl, clr);
                continue;
            }
            int mesh = s.mesh;
            s.mesh = 0;
            qqtri3(b, X, Y, Z, 4, r, gg, bl, clr);
            s.mesh = mesh;
            if (s.curmesh != b->clr.curclr) qqsetc(b, s.curmesh);
            curved_cell(b, g, i, j, P);
            if (b->clr.curclr != savclr) qqsetc(b, savclr);
        }
    if (b->clr.curclr != savclr) qqsetc(b, savclr);
}

// The back pass runs with the sides exchanged: slot 0 of the mesh and
// surface colours then holds the side being drawn.
void swap_sides(SpaceState &s) {
    std::swap(s.mshclr[0], s.mshclr[1]);
    std::swap(s.surclr[0], s.surclr[1]);
}

// The frame that every surface routine shares; returns after drawing.
void surface(SpaceBlock *b, const Grid &g, long long ncells) {
    SpaceState &s = b->sp;
    if (g.n < 2 || g.m < 2) {
        qqwarn(b, 2, g.n < 2 ? g.n : g.m);
        return;
    }
    if (!s.open) {
        qqwar0(b, 35);
        return;
    }
    if (s.shade == 1 && qqdevkind(b) == QQ_KIND_FILE) {
        qqwar0(b, 40);
        return;
    }
    bool zown = false, down = false;
    int savpat = b->sty.patnum;
    if (s.shade == 1) {
        if (!s.zopen) {
            if (qqzbfopen(b)) return;
            zown = true;
        }
    } else if (!s.zopen && !b->cnv.imgact && s.mesh < 3) {
        if (!s.dopen) {
            if (qqdbfopen(b, s.survis == 0 || s.survis == 3 ? 2 * ncells : ncells)) return;
            down = true;
        }
        qqshdpat(b, 16);
    }
    qqflsh(b);
    // The back side runs first, with the sides' attributes exchanged.
    if (s.survis != 1) {
        swap_sides(s);
        cell_pass(b, g, 1);
        swap_sides(s);
    }
    if (s.survis != 2) cell_pass(b, g, 0);
    if (down) qqdbfclose(b);
    if (zown) qqzbfclose(b);
    if (b->sty.patnum != savpat) qqshdpat(b, savpat);
}

void colour_scale(SpaceBlock *b, const double *c, size_t n, bool own) {
    double za, ze;
    if (qqzuser(b, &za, &ze)) {
        qqzscl(b, za, ze);
        return;
    }
    if (own) {
        double lo = INFINITY, hi = -INFINITY;
        for (size_t i = 0; i < n; ++i)
            if (std::isfinite(c[i])) {
                lo = std::min(lo, c[i]);
                hi = std::max(hi, c[i]);
            }
        if (lo <= hi) {
            qqzscl(b, lo, hi);
            return;
        }
    }
    qqzscl(b, b->sp.a[2], b->sp.e[2]);
}

// view3d's point back to the default viewpoint, flab3d's labels back on.
void reset_view(CoreBlock *b) {
    SpaceState &s = qqspcblk(b)->sp;
    s.eye[0] = s.eye[1] = s.eye[2] = 0;
    s.eyemode = 0;
}
void reset_flab(CoreBlock *b) { qqspcblk(b)->sp.flab = 1; }
const ResetEntry kResets[] = {{"FLAB", reset_flab}, {"VIEW", reset_view}, {nullptr, nullptr}};
}  // namespace

extern const Subsystem kxsub_space = {"space",       defaults, space_init,
                                      space_release, kResets,  space_end};

void qqlitabs(SpaceBlock *b, int k) noexcept {
    Light3 &l = b->sp.lit[k];
    if (!b->sp.open) return;
    if (l.mode == 2) {
        for (int i = 0; i < 3; ++i) l.pos[i] = qqplain2abs(b, i, l.pos[i]);
        l.mode = 1;
    } else if (l.mode == 3) {
        double a = l.pos[0] * kPi / 180, bb = l.pos[1] * kPi / 180, r = l.pos[2];
        l.pos[2] = r * std::sin(bb);
        l.pos[0] = r * std::cos(bb) * std::sin(a);
        l.pos[1] = r * std::cos(bb) * std::cos(a);
        l.mode = 1;
    }
    for (int i = 0; i < 3; ++i) l.at[i] = l.pos[i];
}

void qqlight(const SpaceBlock *b, const double p[3], const double N[3], int side, const double *dif,
             double out[3]) noexcept {
    const SpaceState &s = b->sp;
    const Material3 &m = s.mat[side];
    const double *md = dif ? dif : m.dif;
    double C[3];
    for (int c = 0; c < 3; ++c) C[c] = s.scene[c] * m.amb[c];
    double V[3] = {s.ex - p[0], s.ey - p[1], s.ez - p[2]};
    double vl = std::sqrt(V[0] * V[0] + V[1] * V[1] + V[2] * V[2]);
    if (vl > 1e-35)
        for (double &v : V) v /= vl;
    for (int k = 0; k < 8; ++k) {
        const Light3 &L = s.lit[k];
        if (!L.on) continue;
        double l[3] = {L.at[0] - p[0], L.at[1] - p[1], L.at[2] - p[2]};
        double d = std::sqrt(l[0] * l[0] + l[1] * l[1] + l[2] * l[2]);
        if (d > 1e-35)
            for (double &v : l) v /= d;
        double a = L.att[0] + d * L.att[1] + d * d * L.att[2];
        if (!(a > 0)) a = 1e-10;
        double c = N[0] * l[0] + N[1] * l[1] + N[2] * l[2];
        double R[3] = {2 * c * N[0] - l[0], 2 * c * N[1] - l[1], 2 * c * N[2] - l[2]};
        double r = R[0] * V[0] + R[1] * V[1] + R[2] * V[2];
        for (int q = 0; q < 3; ++q) {
            double D = c >= 0 ? L.dif[q] * md[q] * c : 0;
            double sp = m.spc[q] * L.spc[q];
            double S = sp > 1e-35 && c > 1e-7 && r > 0 ? sp * std::pow(r, m.expo) : 0;
            C[q] += (m.amb[q] * L.amb[q] + D + S) / a;
        }
    }
    // A light or material given as NaN or infinity must not reach the
    // pixels as an undefined colour.
    for (int q = 0; q < 3; ++q) out[q] = C[q] > 1.0 ? 1.0 : C[q] >= 0 ? C[q] : 0;
}

// ---------------------------------------------------------------------------
// Surface routines.

void surshd(const double *xray, int n, const double *yray, int m, const double *zmat) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("surshd"));
    if (!b) return;
    if (n >= 2 && m >= 2 && b->sp.open) colour_scale(b, zmat, (size_t)n * m, false);
    Grid g{xray, yray, zmat, zmat, n, m, 0, nullptr, nullptr, 0};
    surface(b, g, (long long)n * m);
}

void surshc(const double *xray, int n, const double *yray, int m, const double *zmat,
            const double *cmat) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("surshc"));
    if (!b) return;
    if (n >= 2 && m >= 2 && b->sp.open) colour_scale(b, cmat, (size_t)n * m, true);
    Grid g{xray, yray, zmat, cmat, n, m, 0, nullptr, nullptr, 0};
    surface(b, g, (long long)n * m);
}

void surtri(const double *xray, const double *yray, const double *zray, int n, const int *i1,
            const int *i2, const int *i3, int ntri) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("surtri"));
    if (!b) return;
    SpaceState &s = b->sp;
    if (n < 3 || ntri < 1) {
        qqwarn(b, 2, n < 3 ? n : ntri);
        return;
    }
    if (!s.open) {
        qqwar0(b, 35);
        return;
    }
    if (s.shade == 1 && qqdevkind(b) == QQ_KIND_FILE) {
        qqwar0(b, 40);
        return;
    }
    colour_scale(b, zray, (size_t)n, false);
    bool zown = false, down = false;
    if (s.shade == 1 && !s.zopen) {
        if (qqzbfopen(b)) return;
        zown = true;
    }
    int savpat = b->sty.patnum;
    if (s.shade == 0 && !s.zopen && !b->cnv.imgact && s.mesh < 3) {
        if (!s.dopen) {
            if (qqdbfopen(b, 2LL * ntri)) return;
            down = true;
        }
        qqshdpat(b, 16);
    }
    int savclr = b->clr.curclr;
    bool pix = qqzpix(b) != 0;
    for (int side = 1; side >= 0; --side) {
        if ((side == 1 && s.survis == 1) || (side == 0 && s.survis == 2)) continue;
        if (side == 1) swap_sides(s);
        s.curmesh = s.mshclr[0] == -1 ? savclr : s.mshclr[0];
        double flat[3];
        int flatclr = flat_colour(b, flat);
        for (int t = 0; t < ntri; ++t) {
            int id[3] = {i1[t] - 1, i2[t] - 1, i3[t] - 1};
            if (id[0] < 0 || id[1] < 0 || id[2] < 0 || id[0] >= n || id[1] >= n || id[2] >= n)
                continue;
            double P[3][3], X[3], Y[3], Z[3], r[3], g[3], bl[3];
            bool ok = true;
            for (int k = 0; k < 3; ++k) {
                P[k][0] = X[k] = qqusr2abs(b, 0, xray[id[k]]);
                P[k][1] = Y[k] = qqusr2abs(b, 1, yray[id[k]]);
                P[k][2] = Z[k] = qqusr2abs(b, 2, zray[id[k]]);
                ok = ok && finite3(P[k]);
            }
            if (!ok) continue;
            if (s.cull != 0 && facing(b, P[0], P[1], P[2], side) == s.cull) continue;
            if (s.mesh == 3 || s.mesh == 4) {
                mesh_marks(b, P, 3);
                continue;
            }
            double nrm[3];
            normal(P[0], P[1], P[2], side, nrm);
            double mean = (zray[id[0]] + zray[id[1]] + zray[id[2]]) / 3, acc[3] = {0, 0, 0};
            for (int k = 0; k < 3; ++k) {
                double c[3] = {flat[0], flat[1], flat[2]};
                if (s.mesh != 2 && (s.lights || s.zsca == 0)) {
                    double zc[3];
                    qqzrgb(b, s.shade == 1 ? zray[id[k]] : mean, &zc[0], &zc[1], &zc[2]);
                    if (s.lights)
                        qqlight(b, P[k], nrm, side, s.zsca == 0 ? zc : nullptr, c);
                    else
                        std::memcpy(c, zc, sizeof c);
                }
                r[k] = c[0];
                g[k] = c[1];
                bl[k] = c[2];
                for (int q = 0; q < 3; ++q) acc[q] += c[q] / 3;
            }
            if (s.lights && s.shade == 0)
                for (int k = 0; k < 3; ++k) {
                    r[k] = acc[0];
                    g[k] = acc[1];
                    bl[k] = acc[2];
                }
            int clr = pix ? savclr : polygon_colour(b, flatclr, mean, r, g, bl, 3);
            qqtri3(b, X, Y, Z, 3, r, g, bl, clr);
        }
        if (side == 1) swap_sides(s);
    }
    if (down) qqdbfclose(b);
    if (zown) qqzbfclose(b);
    if (b->clr.curclr != savclr) qqsetc(b, savclr);
    if (b->sty.patnum != savpat) qqshdpat(b, savpat);
}

namespace {

// The parameter values of one direction of surfcp: lo, lo + step, ...,
// with hi as the last one (the last step may be shorter), so that a closed
// surface closes.  Returns the count, or 0 for a range that gives no grid.
int param_count(double lo, double hi, double step) {
    double span = (hi - lo) / step;
    if (!std::isfinite(span) || !(span > 0) || !std::isfinite(lo) || !std::isfinite(hi)) return 0;
    double k = std::ceil(span - 1e-6);
    if (k < 1) k = 1;
    return k + 1 > 1e7 ? -1 : (int)k + 1;
}

double param_at(double lo, double hi, double step, int i, int n) {
    return i == n - 1 ? hi : lo + i * step;
}

// At most this many grid points (three doubles each) and as many points of
// curved mesh lines: a parametric surface finer than that shows nothing
// more on any page.
constexpr double kMaxParamPoints = 4e6;

}  // namespace

// The function is evaluated at every grid point (and at the points of
// curved mesh lines) before anything is drawn, so that a function that
// itself calls the library finds no half-drawn surface; the axis system is
// looked at again afterwards.
void surfcp(double (*zfun)(double, double, int), double pmin, double pmax, double pstp, double qmin,
            double qmax, double qstp) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("surfcp"));
    if (!b) return;
    if (!b->sp.open) {
        qqwar0(b, 35);
        return;
    }
    int n = param_count(pmin, pmax, pstp), m = param_count(qmin, qmax, qstp);
    if (n < 2 || m < 2 || (double)n * m > kMaxParamPoints) {
        qqwarnd(b, 2, n < 2 || (double)n * m > kMaxParamPoints ? pstp : qstp);
        return;
    }
    if (!zfun) {
        qqwar0(b, 2);
        return;
    }
    size_t cnt = (size_t)n * m;
    int k = b->sp.mshcrv;
    bool curves = k >= 4 && b->sp.mesh >= 1 && b->sp.mesh <= 3;
    size_t per = curves ? (size_t)(k - 2) * 3 : 0;
    size_t nep = (size_t)(n - 1) * m * per, neq = (size_t)n * (m - 1) * per;
    if (curves && (double)(nep + neq) / 3 > kMaxParamPoints) {
        curves = false;  // too fine to be told apart: straight lines
        nep = neq = 0;
    }
    double *buf = (double *)std::malloc(sizeof(double) * (cnt * 3 + nep + neq));
    if (!buf) {
        qqwar0(b, 53);
        return;
    }
    double *x = buf, *y = buf + cnt, *z = buf + 2 * cnt, *ep = buf + 3 * cnt, *eq = ep + nep;
    auto point = [&](double p, double q, double *out) {
        for (int c = 0; c < 3; ++c) out[c] = zfun(p, q, c + 1);
    };
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < m; ++j) {
            double v[3];
            point(param_at(pmin, pmax, pstp, i, n), param_at(qmin, qmax, qstp, j, m), v);
            size_t at = (size_t)i * m + j;
            x[at] = v[0];
            y[at] = v[1];
            z[at] = v[2];
        }
    if (curves)
        for (int i = 0; i < n; ++i)
            for (int j = 0; j < m; ++j) {
                double p0 = param_at(pmin, pmax, pstp, i, n), q0 = param_at(qmin, qmax, qstp, j, m);
                for (int t = 1; t < k - 1; ++t) {
                    double f = (double)t / (k - 1);
                    if (i + 1 < n) {
                        double p1 = param_at(pmin, pmax, pstp, i + 1, n);
                        point(p0 + f * (p1 - p0), q0, ep + ((size_t)i * m + j) * per + 3 * (t - 1));
                    }
                    if (j + 1 < m) {
                        double q1 = param_at(qmin, qmax, qstp, j + 1, m);
                        point(p0, q0 + f * (q1 - q0),
                              eq + ((size_t)i * (m - 1) + j) * per + 3 * (t - 1));
                    }
                }
            }
    // The function may have ended the axis system or the session.
    SpaceBlock *again = qqspcblk(KX_ENTRY("surfcp"));
    if (again == b && b->sp.open) {
        colour_scale(b, z, cnt, false);
        Grid g{x, y, z, z, n, m, 1, curves ? ep : nullptr, curves ? eq : nullptr, k};
        surface(b, g, (long long)cnt);
    }
    std::free(buf);
}

// ---------------------------------------------------------------------------
// Settings.

void light(const char *copt) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("light"));
    if (!b) return;
    int k = qqkey(b, "OFF +ON  ", 2, copt);
    if (k > 0) b->sp.lights = k - 1;
}

// The colour number that the light model gives a point with a normal, as a
// polygon gets it on output without pixels; the current colour with the
// lights off.  The point is a user position of the open 3-D axis system,
// else an absolute one.
int getlit(double xp, double yp, double zp, double xn, double yn, double zn) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("getlit"));
    if (!b) return 0;
    const SpaceState &s = b->sp;
    if (!s.lights) return b->clr.curclr;
    double p[3] = {xp, yp, zp}, n[3] = {xn, yn, zn};
    if (s.open)
        for (int a = 0; a < 3; ++a) p[a] = qqusr2abs(b, a, p[a]);
    double len = std::sqrt(n[0] * n[0] + n[1] * n[1] + n[2] * n[2]);
    if (len > 1e-35)
        for (double &v : n) v /= len;
    double c[3];
    qqlight(b, p, n, 0, nullptr, c);
    return qqnearest(b, (int)(c[0] * 255 + 0.5), (int)(c[1] * 255 + 0.5), (int)(c[2] * 255 + 0.5));
}

void litmod(int id, const char *copt) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("litmod"));
    if (!b || !light_index(b, id)) return;
    int k = qqkey(b, "OFF +ON  ", 2, copt);
    if (k > 0) b->sp.lit[id - 1].on = k - 1;
}

void litpos(int id, double x, double y, double z, const char *copt) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("litpos"));
    if (!b || !light_index(b, id)) return;
    int k = qqkey(b, "ABS +USER+ANGL", 3, copt);
    if (k < 1) return;
    Light3 &l = b->sp.lit[id - 1];
    l.pos[0] = x;
    l.pos[1] = y;
    l.pos[2] = z;
    l.mode = k;
    if (!b->sp.open) return;
    qqlitabs(b, id - 1);
    // An absolute position given inside an axis system is kept as a user
    // point, so that it keeps its place on the data when the next graf3d
    // scales differently; here and now it stands where it was given.
    if (k == 1) {
        for (int i = 0; i < 3; ++i) l.pos[i] = qqabs2plain(b, i, l.pos[i]);
        l.mode = 2;
    }
}

void litopt(int id, double xval, const char *copt) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("litopt"));
    if (!b || !light_index(b, id)) return;
    int k = qqkey(b, "AMBI+DIFF+SPEC+CONS+LINE+QUAD", 6, copt);
    if (k < 1 || negative(b, xval)) return;
    Light3 &l = b->sp.lit[id - 1];
    if (k <= 3) {
        double *t = k == 1 ? l.amb : k == 2 ? l.dif : l.spc;
        t[0] = t[1] = t[2] = xval;
    } else {
        if (k == 4 && xval == 0) xval = 1e-10;
        l.att[k - 4] = xval;
    }
}

void litop3(int id, double xr, double xg, double xb, const char *copt) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("litop3"));
    if (!b || !light_index(b, id)) return;
    int k = qqkey(b, "AMBI+DIFF+SPEC", 3, copt);
    if (k < 1 || negative(b, xr) || negative(b, xg) || negative(b, xb)) return;
    Light3 &l = b->sp.lit[id - 1];
    double *t = k == 1 ? l.amb : k == 2 ? l.dif : l.spc;
    t[0] = xr;
    t[1] = xg;
    t[2] = xb;
}

void matopt(double xval, const char *copt) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("matopt"));
    if (!b) return;
    int k = qqkey(b, "AMBI+DIFF+SPEC+EXPO", 4, copt);
    if (k < 1 || negative(b, xval)) return;
    int lo, hi;
    sides(b, &lo, &hi);
    for (int s = lo; s <= hi; ++s) {
        Material3 &m = b->sp.mat[s];
        if (k == 4) {
            m.expo = xval;
            continue;
        }
        double *t = k == 1 ? m.amb : k == 2 ? m.dif : m.spc;
        t[0] = t[1] = t[2] = xval;
    }
}

void matop3(double xr, double xg, double xb, const char *copt) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("matop3"));
    if (!b) return;
    int k = qqkey(b, "AMBI+DIFF+SPEC", 3, copt);
    if (k < 1 || negative(b, xr) || negative(b, xg) || negative(b, xb)) return;
    int lo, hi;
    sides(b, &lo, &hi);
    for (int s = lo; s <= hi; ++s) {
        Material3 &m = b->sp.mat[s];
        double *t = k == 1 ? m.amb : k == 2 ? m.dif : m.spc;
        t[0] = xr;
        t[1] = xg;
        t[2] = xb;
    }
}

void setfce(const char *copt) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("setfce"));
    if (!b) return;
    int k = qqkey(b, "TOP +BOTT+BOTH", 3, copt);
    if (k > 0) b->sp.side = k - 1;
}

void mshclr(int nclr) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("mshclr"));
    if (!b) return;
    int lo, hi;
    sides(b, &lo, &hi);
    for (int s = lo; s <= hi; ++s) b->sp.mshclr[s] = nclr;
    b->cpl.mshclr = b->sp.mshclr[0];
}

void mshcrv(int n) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("mshcrv"));
    if (b) b->sp.mshcrv = n < 4 ? 0 : n;
}

void surmsh(const char *copt) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("surmsh"));
    if (!b) return;
    int k = qqkey(b, "OFF +ON  +ONLY+LINE+POIN", 5, copt);
    if (k > 0) b->sp.mesh = b->cpl.mesh = k - 1;
}

void shdmod(const char *copt, const char *ctype) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("shdmod"));
    if (!b) return;
    enum { SURF = 1, CONT, CURV, CELL, COLO, CULL, SYMB, ZSCA };
    int t = qqkey(b, "SURF+CONT+CURV+CELL+COLO+CULL+SYMB+ZSCA", 8, ctype);
    if (t < 1) return;
    SpaceState &s = b->sp;
    if (t == SURF) {
        int k = qqkey(b, "FLAT+SMOO", 2, copt);
        if (k > 0) s.shade = b->cpl.shade = k - 1;
    } else if (t == CURV) {
        // The painting of colour points, or the tubes of 3-D curves.
        int k = qqkey(b, "RECT+SYMB+PIXE+2D  +3D  ", 5, copt);
        if (k >= 1 && k <= 3) b->cpl.crvmode = k - 1;
        if (k >= 4) b->cpl.tube3d = (unsigned char)(k - 4);
    } else if (t == SYMB) {
        int k = qqkey(b, "2D  +3D  ", 2, copt);
        if (k > 0) b->cpl.sym3d = (unsigned char)(k - 1);
    } else if (t == CONT || t == CELL || t == COLO) {
        // Settings of contour shading, which keeps its own methods.
    } else if (t == CULL) {
        int k = qqkey(b, "OFF +ON  +FRON", 3, copt);
        if (k > 0) s.cull = k - 1;
    } else if (t == ZSCA) {
        int k = qqkey(b, "ON  +OFF ", 2, copt);
        if (k > 0) s.zsca = k - 1;
    }
}
