#include "raster/zbuffer.h"

#include <cmath>

#include "raster/canvas_state.h"

namespace {

struct Pen {
    qqcanvas *cv;
    float *zb;
    int alpha;
    int lastr, lastg, lastb, lastidx;  // nearest-index cache of index canvases
};

int nearest(Pen &p, int r, int g, int b) {
    if (r == p.lastr && g == p.lastg && b == p.lastb) return p.lastidx;
    const qqcanvas *cv = p.cv;
    int best = 0, bd = 1 << 30;
    for (int i = 0; i < 256; ++i) {
        int d = std::abs(cv->tabr[i] - r) + std::abs(cv->tabg[i] - g) + std::abs(cv->tabb[i] - b);
        if (d < bd) {
            bd = d;
            best = i;
            if (d == 0) break;
        }
    }
    p.lastr = r;
    p.lastg = g;
    p.lastb = b;
    p.lastidx = best;
    return best;
}

inline void put(Pen &p, int x, int y, float z, int r, int g, int b) {
    qqcanvas *cv = p.cv;
    float *zp = p.zb ? p.zb + (size_t)y * cv->cw + x : nullptr;
    bool blend = p.alpha < 255 && cv->rgbcnv;
    if (zp) {
        if (blend ? !(*zp > z + 0.001f) : !(*zp >= z - 1e-6f)) return;
    }
    if (cv->revcnv) {
        if (r == 255 && g == 255 && b == 255)
            r = g = b = 0;
        else if (r == 0 && g == 0 && b == 0)
            r = g = b = 255;
    }
    if (cv->rgbcnv) {
        unsigned char *q = cv->pix + (size_t)y * cv->rowb + (size_t)x * 4;
        if (blend) {
            double a = p.alpha / 255.0;
            q[0] = (unsigned char)std::trunc((1 - a) * q[0] + a * r + 0.5);
            q[1] = (unsigned char)std::trunc((1 - a) * q[1] + a * g + 0.5);
            q[2] = (unsigned char)std::trunc((1 - a) * q[2] + a * b + 0.5);
        } else {
            q[0] = (unsigned char)r;
            q[1] = (unsigned char)g;
            q[2] = (unsigned char)b;
            q[3] = cv->alpha;
        }
    } else {
        cv->pix[(size_t)y * cv->rowb + x] = (unsigned char)nearest(p, r, g, b);
    }
    if (zp) *zp = z;
}

inline int rnd(double v) {
    return (int)std::floor(v + 0.5);
}

// A span of row y from a to b (a.x not above b.x after the swap).
void span(Pen &p, int y, const QQZVert &a0, const QQZVert &b0) {
    qqcanvas *cv = p.cv;
    if (y < cv->clipy0 || y > cv->clipy1) return;
    const QQZVert *a = &a0, *b = &b0;
    if (a->x > b->x) {
        const QQZVert *t = a;
        a = b;
        b = t;
    }
    int xa = rnd(a->x), xb = rnd(b->x);
    int x0 = xa < cv->clipx0 ? cv->clipx0 : xa, x1 = xb > cv->clipx1 ? cv->clipx1 : xb;
    if (x0 > x1) return;
    double ca[3] = {255 * a->r, 255 * a->g, 255 * a->b},
           cb[3] = {255 * b->r, 255 * b->g, 255 * b->b};
    double dx = b->x - a->x;
    double dz = 0, dc[3] = {0, 0, 0};
    if (dx > 0) {
        dz = (b->z - a->z) / dx;
        for (int k = 0; k < 3; ++k) dc[k] = (cb[k] - ca[k]) / dx;
    }
    for (int x = x0; x <= x1; ++x) {
        double t = x - a->x;
        if (t < 0) t = 0;
        if (x > b->x) t = dx;
        double z = a->z + t * dz;
        int r = (int)(ca[0] + t * dc[0] + 0.5), g = (int)(ca[1] + t * dc[1] + 0.5),
            bl = (int)(ca[2] + t * dc[2] + 0.5);
        r = r < 0 ? 0 : r > 255 ? 255 : r;
        g = g < 0 ? 0 : g > 255 ? 255 : g;
        bl = bl < 0 ? 0 : bl > 255 ? 255 : bl;
        put(p, x, y, (float)z, r, g, bl);
    }
}

QQZVert lerp(const QQZVert &a, const QQZVert &b, double y) {
    double d = b.y - a.y;
    double t = d != 0 ? (y - a.y) / d : 0;
    if (t < 0) t = 0;
    if (t > 1) t = 1;
    QQZVert v;
    v.x = a.x + t * (b.x - a.x);
    v.y = y;
    v.z = a.z + t * (b.z - a.z);
    v.r = a.r + t * (b.r - a.r);
    v.g = a.g + t * (b.g - a.g);
    v.b = a.b + t * (b.b - a.b);
    return v;
}

}  // namespace

void qqcrast(qqcanvas *cv, float *zb, const QQZVert *v, int alpha) noexcept {
    if (!cv || !cv->pix) return;
    for (int i = 0; i < 3; ++i)
        if (!std::isfinite(v[i].x) || !std::isfinite(v[i].y) || !std::isfinite(v[i].z)) return;
    Pen p{cv, zb, alpha, -1, -1, -1, 0};
    const QQZVert *s[3] = {&v[0], &v[1], &v[2]};
    for (int i = 0; i < 2; ++i)
        for (int j = 0; j < 2 - i; ++j)
            if (s[j]->y > s[j + 1]->y) {
                const QQZVert *t = s[j];
                s[j] = s[j + 1];
                s[j + 1] = t;
            }
    const QQZVert &a = *s[0], &m = *s[1], &c = *s[2];
    int ra = rnd(a.y), rm = m.y - a.y < 0.1 ? ra : rnd(m.y), rc = c.y - m.y < 0.1 ? rm : rnd(c.y);
    if (rc < cv->clipy0 || ra > cv->clipy1) return;
    if (ra == rc) {
        // A flat triangle: two spans between the vertices in x order.
        const QQZVert *o[3] = {&a, &m, &c};
        for (int i = 0; i < 2; ++i)
            for (int j = 0; j < 2 - i; ++j)
                if (o[j]->x > o[j + 1]->x) {
                    const QQZVert *t = o[j];
                    o[j] = o[j + 1];
                    o[j + 1] = t;
                }
        span(p, ra, *o[0], *o[1]);
        span(p, ra, *o[1], *o[2]);
        return;
    }
    int y0 = ra < cv->clipy0 ? cv->clipy0 : ra, y1 = rc > cv->clipy1 ? cv->clipy1 : rc;
    for (int y = y0; y <= y1; ++y) {
        // Row y stands for the band of y values that round to it.
        double yy = y;
        if (y == ra) yy = a.y;
        if (y == rc) yy = c.y;
        QQZVert l = lerp(a, c, yy);
        QQZVert r;
        if (y < rm || (y == rm && rm == ra))
            r = y == rm ? m : lerp(a, m, yy);
        else if (y == rm)
            r = m;
        else
            r = lerp(m, c, yy);
        span(p, y, l, r);
    }
}

void qqczline(qqcanvas *cv, float *zb, double x0, double y0, double z0, double x1, double y1,
              double z1, float bias) noexcept {
    if (!cv || !cv->pix) return;
    if (!std::isfinite(x0) || !std::isfinite(y0) || !std::isfinite(x1) || !std::isfinite(y1))
        return;
    int r = cv->colr, g = cv->colg, b = cv->colb;
    double dx = x1 - x0, dy = y1 - y0;
    double n = std::fmax(std::fabs(dx), std::fabs(dy));
    if (n > 1e6) return;
    int steps = (int)std::ceil(n);
    for (int i = 0; i <= steps; ++i) {
        double t = steps ? (double)i / steps : 0;
        int x = rnd(x0 + t * dx), y = rnd(y0 + t * dy);
        if (x < cv->clipx0 || x > cv->clipx1 || y < cv->clipy0 || y > cv->clipy1) continue;
        float z = (float)(z0 + t * (z1 - z0));
        if (zb) {
            float &d = zb[(size_t)y * cv->cw + x];
            if (!(d >= z - bias)) continue;
            d = z;
        }
        if (cv->rgbcnv) {
            unsigned char *q = cv->pix + (size_t)y * cv->rowb + (size_t)x * 4;
            q[0] = (unsigned char)r;
            q[1] = (unsigned char)g;
            q[2] = (unsigned char)b;
            q[3] = cv->alpha;
        } else {
            cv->pix[(size_t)y * cv->rowb + x] = cv->colidx;
        }
    }
}
