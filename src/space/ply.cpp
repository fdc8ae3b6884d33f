// PLY export: between plyini and plyfin every polygon of the triangle path
// is recorded as well, in user coordinates with its colours, and plyfin
// writes the record as an ASCII PLY file.
//
// Vertices are shared between faces when position (as float) and colour
// (as bytes) agree.  Stored vertices are unique, so a hash of them finds
// the one equal vertex exactly as a search from the first would, without
// the quadratic cost on large surfaces.
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "colour/colour.h"
#include "core/guard.h"
#include "core/keywords.h"
#include "core/numfmt.h"
#include "core/session.h"
#include "core/text.h"
#include "core/warnings.h"
#include "kolvex.h"
#include "space/space.h"
#include "space/space_block.h"

struct PlyStore {
    float *x, *y, *z;
    unsigned char *r, *g, *b;
    int nv, vcap;
    int32_t *idx;
    int ni, icap;
    int nf;
    int *hash;  // open addressing: vertex number + 1, 0 empty; hcap a power of 2
    int hcap;
};

namespace {

constexpr int kVertexStep = 10000, kIndexStep = 40000;

template <typename T>
bool grow(T **p, int cap) {
    T *q = (T *)std::realloc(*p, sizeof(T) * (size_t)cap);
    if (!q) return false;
    *p = q;
    return true;
}

void free_store(PlyStore *s) {
    if (!s) return;
    std::free(s->x);
    std::free(s->y);
    std::free(s->z);
    std::free(s->r);
    std::free(s->g);
    std::free(s->b);
    std::free(s->idx);
    std::free(s->hash);
    std::free(s);
}

uint32_t vertex_hash(float x, float y, float z, unsigned char r, unsigned char g, unsigned char b) {
    uint32_t h = 2166136261u;
    auto mix = [&h](const void *p, size_t n) {
        const unsigned char *c = (const unsigned char *)p;
        for (size_t i = 0; i < n; ++i) h = (h ^ c[i]) * 16777619u;
    };
    // +0.0 and -0.0 compare equal: hash them alike.
    float v[3] = {x == 0 ? 0.0f : x, y == 0 ? 0.0f : y, z == 0 ? 0.0f : z};
    mix(v, sizeof v);
    unsigned char c[3] = {r, g, b};
    mix(c, 3);
    return h;
}

bool same(const PlyStore *s, int k, float x, float y, float z, unsigned char r, unsigned char g,
          unsigned char b) {
    return s->x[k] == x && s->y[k] == y && s->z[k] == z && s->r[k] == r && s->g[k] == g &&
           s->b[k] == b;
}

bool rehash(PlyStore *s, int cap) {
    int *h = (int *)std::calloc((size_t)cap, sizeof(int));
    if (!h) return false;
    for (int k = 0; k < s->nv; ++k) {
        uint32_t i = vertex_hash(s->x[k], s->y[k], s->z[k], s->r[k], s->g[k], s->b[k]) & (cap - 1);
        while (h[i]) i = (i + 1) & (cap - 1);
        h[i] = k + 1;
    }
    std::free(s->hash);
    s->hash = h;
    s->hcap = cap;
    return true;
}

// Room for one more face of n corners; false when memory fails.
bool make_room(PlyStore *s, int n) {
    if (s->ni + n + 1 >= s->icap) {
        if (s->icap > INT32_MAX - kIndexStep || !grow(&s->idx, s->icap + kIndexStep)) return false;
        s->icap += kIndexStep;
    }
    if (s->nv + n >= s->vcap) {
        if (s->vcap > INT32_MAX / 4 - kVertexStep) return false;
        int cap = s->vcap + kVertexStep;
        if (!grow(&s->x, cap) || !grow(&s->y, cap) || !grow(&s->z, cap) || !grow(&s->r, cap) ||
            !grow(&s->g, cap) || !grow(&s->b, cap))
            return false;
        s->vcap = cap;
    }
    // The hash stays at most half full.
    if (2 * (s->nv + n) >= s->hcap && !rehash(s, s->hcap ? 2 * s->hcap : 4 * kVertexStep))
        return false;
    return true;
}

unsigned char byte_of(double c) {
    double v = std::trunc(c * 255 + 0.5);
    return (unsigned char)(v < 0 ? 0 : v > 255 ? 255 : v);
}

}  // namespace

void qqplyadd(SpaceBlock *blk, const double *x, const double *y, const double *z, const double *r,
              const double *g, const double *b, int n) noexcept {
    SpaceState &sp = blk->sp;
    if (n < 1) return;
    if (!sp.ply) {
        sp.ply = (PlyStore *)std::calloc(1, sizeof(PlyStore));
        if (!sp.ply) {
            qqwar0(blk, 53);
            return;
        }
    }
    PlyStore *s = sp.ply;
    if (!make_room(s, n)) {
        qqwar0(blk, 53);
        return;
    }
    s->idx[s->ni++] = n;
    for (int i = 0; i < n; ++i) {
        float fx = (float)x[i], fy = (float)y[i], fz = (float)z[i];
        unsigned char cr = byte_of(r[i]), cg = byte_of(g[i]), cb = byte_of(b[i]);
        uint32_t h = vertex_hash(fx, fy, fz, cr, cg, cb) & (s->hcap - 1);
        int found = -1;
        for (; s->hash[h]; h = (h + 1) & (s->hcap - 1))
            if (same(s, s->hash[h] - 1, fx, fy, fz, cr, cg, cb)) {
                found = s->hash[h] - 1;
                break;
            }
        if (found < 0) {
            found = s->nv++;
            s->x[found] = fx;
            s->y[found] = fy;
            s->z[found] = fz;
            s->r[found] = cr;
            s->g[found] = cg;
            s->b[found] = cb;
            s->hash[h] = found + 1;
        }
        s->idx[s->ni++] = found;
    }
    s->nf++;
}

void qqplypoly(SpaceBlock *b, const double *x, const double *y, const double *z, int n,
               const double *r, const double *g, const double *bl, int clr) noexcept {
    double ux[4], uy[4], uz[4], cr[4], cg[4], cb[4];
    if (n < 1 || n > 4) return;
    bool own = !qqzpix(b);
    double fr = 0, fg = 0, fb = 0;
    if (own) {
        // Without pixels the polygon has one colour, its colour number's.
        int ir, ig, ib;
        qqclrrgb(b, clr, &ir, &ig, &ib);
        fr = ir / 255.0;
        fg = ig / 255.0;
        fb = ib / 255.0;
    }
    for (int i = 0; i < n; ++i) {
        ux[i] = qqabs2usr(b, 0, x[i]);
        uy[i] = qqabs2usr(b, 1, y[i]);
        uz[i] = qqabs2usr(b, 2, z[i]);
        cr[i] = own ? fr : r[i];
        cg[i] = own ? fg : g[i];
        cb[i] = own ? fb : bl[i];
    }
    qqplyadd(b, ux, uy, uz, cr, cg, cb, n);
}

void qqplyfree(SpaceBlock *b) noexcept {
    free_store(b->sp.ply);
    b->sp.ply = nullptr;
    b->sp.plymode = 0;
}

void plyini(const char *copt) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("plyini"));
    if (!b) return;
    int k = qqkey(b, "STAN", 1, copt);
    if (k < 1) return;
    if (b->sp.plymode) {
        qqwar1(b, 190, "Output to PLY format is already enabled");
        return;
    }
    b->sp.plymode = 1;
}

void plyfin(const char *cfile, const char *cobj) noexcept {
    SpaceBlock *b = qqspcblk(KX_ENTRY("plyfin"));
    if (!b) return;
    SpaceState &sp = b->sp;
    if (!sp.plymode) {
        qqwar1(b, 191, "Output to PLY format is not enabled");
        return;
    }
    sp.plymode = 0;
    PlyStore *s = sp.ply;
    QQOutFile out{};
    qqscpy(out.name, cfile ? cfile : "", 256);
    char obj[81];
    qqscpy(obj, cobj ? cobj : "", 80);
    if (qqoutopen(b, &out, "w") != 0) {
        qqplyfree(b);
        return;
    }
    int nv = s ? s->nv : 0, nf = s ? s->nf : 0;
    std::fprintf(out.fp,
                 "ply\nformat ascii 1.0\ncomment author: Kolvex\ncomment object: %s\n"
                 "element vertex %d\nproperty float x\nproperty float y\nproperty float z\n"
                 "property uchar red\nproperty uchar green\nproperty uchar blue\n"
                 "element face %d\nproperty list uchar int vertex_indices\nend_header\n",
                 obj, nv, nf);
    char t[3][400];
    for (int k = 0; k < nv; ++k) {
        qqfmtf(t[0], sizeof t[0], s->x[k], 0, 6);
        qqfmtf(t[1], sizeof t[1], s->y[k], 0, 6);
        qqfmtf(t[2], sizeof t[2], s->z[k], 0, 6);
        std::fprintf(out.fp, "%s %s %s %d %d %d\n", t[0], t[1], t[2], s->r[k], s->g[k], s->b[k]);
    }
    for (int i = 0; s && i < s->ni;) {
        int n = s->idx[i++];
        std::fprintf(out.fp, "%d", n);
        for (int j = 0; j < n && i < s->ni; ++j) std::fprintf(out.fp, " %d", s->idx[i++]);
        std::fputc('\n', out.fp);
    }
    qqoutclose(b, &out, 1);
    qqplyfree(b);
}
