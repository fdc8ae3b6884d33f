// The map axis system: projct and the map settings, grafmp with its
// scale and origin per family, the map axes whose ticks stand where a
// meridian or parallel crosses the frame, the own outline of round and
// pseudo-cylindrical maps with their latitude labels, and the single map
// axes xaxmap and yaxmap.
#include <cmath>
#include <cstring>
#include <initializer_list>

#include "axes/axes.h"
#include "axes/axis_draw.h"
#include "axes/label_text.h"
#include "core/guard.h"
#include "core/keywords.h"
#include "core/session.h"
#include "core/subsystems.h"
#include "core/text.h"
#include "core/warnings.h"
#include "devices/device.h"
#include "kolvex.h"
#include "maps/maps.h"

namespace {

const char kProjections[] =
    "CYLI+MERC+EXAC+CORR+UTM +OBLI+EQUA+MOLL+AITO+HAMM+WINK+SANS+ELLI+CONF+ALBE+POLY+CONI+GNOM+"
    "ORTH+STER+AZIM+LAMB+MYPR";
const int kCodes[23] = {0,  1,  2,  3,  4,  5,  6,  10, 11, 12, 13, 14,
                        15, 20, 21, 22, 23, 30, 31, 32, 33, 34, 100};

// ---------------------------------------------------------------------------
// Ticks on the frame.

// Where a meridian (X axis) or a parallel (Y axis) of value v crosses the
// straight frame edge of the axis call: the distance from the axis start,
// or NaN when it does not cross within the axis.
double frame_cross(AxesBlock *ab, const AxisCall &c, double v) {
    MapBlock *b = qqmapblk(ab);
    const MapState &m = b->map;
    bool isx = qqaxgeo(c) == 0;
    double xp, yp;
    double lo = isx ? c.x0 : c.y0 - c.len + 1, hi = isx ? c.x0 + c.len - 1 : c.y0;
    double at = NAN;
    if (m.code < 10) {
        if (isx) {
            qqmpos(b, v, (m.ya + m.ye) / 2, &xp, &yp);
            at = xp;
        } else {
            qqmpos(b, m.g, v, &xp, &yp);
            at = yp;
        }
    } else {
        // Walk the other coordinate over the sphere a degree at a time and
        // interpolate in the step whose ends enclose the edge.
        double E = isx ? c.y0 : c.x0;
        double pa = 0, pb = 0;
        bool have = false;
        double lim = isx ? 90 : 180;
        for (double w = -lim; w <= lim; w += 1) {
            double lon = isx ? v : w, lat = isx ? w : v;
            if (qqmazim(m.code)) {
                double t, r;
                qqmpolar(b, lon, lat, &t, &r);
                if (r > m.sph) {
                    have = false;
                    continue;
                }
            }
            qqmpos(b, lon, lat, &xp, &yp);
            double q = isx ? yp : xp, o = isx ? xp : yp;
            if (have && ((pa - E) * (q - E) <= 0) && pa != q) {
                double f = (E - pa) / (q - pa);
                double cross = pb + f * (o - pb);
                if (cross >= lo - 0.5 && cross <= hi + 0.5) {
                    at = cross;
                    break;
                }
            }
            pa = q;
            pb = o;
            have = true;
        }
    }
    if (!(at >= lo - 0.5 && at <= hi + 0.5)) return NAN;
    return isx ? at - c.x0 : c.y0 - at;
}

void map_axis(MapBlock *b, int axis, double a, double e, double orl, double step, int len, int x0,
              int y0, int side, int level) {
    AxisCall c{};
    c.axis = axis;
    c.a = a;
    c.e = e;
    c.orl = orl;
    c.step = step;
    c.len = len;
    c.x0 = x0;
    c.y0 = y0;
    c.side = side;
    c.level = level;
    if (b->map.code != 0) c.where = frame_cross;
    qqaxis(b, c);
}

// ---------------------------------------------------------------------------
// Own outline and latitude labels.

void outline(MapBlock *b) {
    const MapState &m = b->map;
    const ScaleRecord &r = b->ax.rec;
    int f = b->ax.frmthk;
    if (f == 0) return;
    int n = f > 0 ? f : -f;
    int saved = b->clr.curclr;
    if (b->ax.frmcol != -1) qqsetc(b, b->ax.frmcol);
    double savoff = b->dev.lnoff;
    for (int i = 0; i < n; ++i) {
        int k = f > 0 ? i : -i;
        if (m.hemi) {
            double rad = (r.nxl < r.nyl ? r.nxl : r.nyl) / 2 + k;
            for (int j = 0; j <= 360; ++j) {
                double t = j * b->core.xdegr;
                double x = m.ox + rad * std::cos(t), y = m.oy - rad * std::sin(t);
                if (j == 0)
                    qqmove(b, x, y);
                else
                    qqdraw(b, x, y);
            }
        } else {
            qqflsh(b);
            b->dev.lnoff = k;
            double xp, yp;
            qqmpos(b, m.xa, m.ya, &xp, &yp);
            qqmove(b, xp, yp);
            for (double lat = m.ya + 1; lat < m.ye; lat += 1) {
                qqmpos(b, m.xa, lat, &xp, &yp);
                qqdraw(b, xp, yp);
            }
            qqmpos(b, m.xa, m.ye, &xp, &yp);
            qqdraw(b, xp, yp);
            for (double lat = m.ye; lat > m.ya; lat -= 1) {
                qqmpos(b, m.xe, lat, &xp, &yp);
                qqdraw(b, xp, yp);
            }
            qqmpos(b, m.xe, m.ya, &xp, &yp);
            qqdraw(b, xp, yp);
            qqmpos(b, m.xa, m.ya, &xp, &yp);
            qqdraw(b, xp, yp);
            qqflsh(b);
        }
    }
    b->dev.lnoff = savoff;
    qqflsh(b);
    if (b->clr.curclr != saved) qqsetc(b, saved);
}

// Writes a label right-justified before (left) or after (right) a point,
// centred on it in height.
void write_label(MapBlock *b, const char *t, double x, double y, bool left, double gap) {
    double w = qqaxtw(b, t);
    double h = qqaxth(b);
    double tx = left ? x - gap - w : x + gap;
    qqaxtxt(b, t, tx, y - h / 2, 0);
}

void latitude_labels(MapBlock *b) {
    const MapState &m = b->map;
    const ScaleRecord &r = b->ax.rec;
    if (m.latlab == 0 || r.stp[1] == 0 || b->ax.lab[1] == 0) return;
    // The labels take the text modes of the y axis labels (the degree
    // sign of map labels).
    AxisCall c{};
    c.axis = 1;
    AxMixSave mix;
    bool mixed = qqlabmix(b, c, &mix) != 0;
    double h = qqaxth(b);
    double gap = b->ax.labdis[1] + b->ax.ticmaj;
    double lo = m.ya, hi = m.ye;
    double st = std::fabs(r.stp[1]);
    double k0 = std::ceil((lo - r.orl[1]) / st - 1e-9),
           k1 = std::floor((hi - r.orl[1]) / st + 1e-9);
    char t[QQ_LABLEN + 1];
    if (!(k1 - k0 < 1000)) k1 = k0 - 1;
    for (double k = k0; k <= k1; k += 1) {
        double lat = r.orl[1] + k * st;
        if (std::fabs(lat) < 1e-9) lat = 0;
        qqlabtxt(b, lat, (int)k + 1, 0, 1, t);
        if (!t[0]) continue;
        for (int sidei = 0; sidei < 2; ++sidei) {
            bool left = sidei == 0;
            if (!(m.latlab == 3 || m.latlab == (left ? 1 : 2))) continue;
            double xp, yp;
            if (qqmpseudo(m.code)) {
                qqmpos(b, left ? m.xa : m.xe, lat, &xp, &yp);
                if (m.code == 11 || m.code == 12) {
                    double dx = h * std::fabs(lat) / 90;
                    xp += left ? dx : -dx;
                    yp += -h * lat / 90;
                } else if (lat >= 30) {
                    yp -= h / 2;
                } else if (lat <= -30) {
                    yp += h / 2;
                }
            } else {
                double lon = m.lon0;
                bool pole = std::fabs(lat) == 90 && m.lon0 == 0 && m.lat0 == 0;
                if (!pole) {
                    double t0, rr;
                    // A parallel that does not reach the centre's
                    // meridian within the limit has no label.
                    qqmpolar(b, lon, lat, &t0, &rr);
                    if (rr > m.sph) continue;
                    int i = 0;
                    for (; i < 360; ++i) {
                        qqmpolar(b, lon, lat, &t0, &rr);
                        if (rr > m.sph) break;
                        lon += left ? -1 : 1;
                    }
                    if (i == 360) continue;
                }
                qqmpos(b, lon, lat, &xp, &yp);
            }
            write_label(b, t, xp, yp, left, gap);
        }
    }
    if (mixed) qqaxmixend(b, &mix);
}

// ---------------------------------------------------------------------------
// The tests of the limits by family.

bool bad_limits(MapBlock *b, int code, double xa, double xe, double ya, double ye) {
    auto out = [](double v, double lim) { return v < -lim || v > lim; };
    bool bad;
    if (code == 0)
        bad = out(xa, 540.1) || out(xe, 540.1) || out(ya, 180.1) || out(ye, 180.1);
    else if (code == 1)
        bad = out(xa, 540.1) || out(xe, 540.1) || out(ya, 85.1) || out(ye, 85.1);
    else if (qqmcyl(code))
        bad = out(xa, 540.1) || out(xe, 540.1) || out(ya, 90.1) || out(ye, 90.1);
    else if (qqmpseudo(code))
        bad = out(xa, 540.1) || out(xe, 540.1) || out(ya, 90.1) || out(ye, 90.1) || xe - xa > 360.1;
    else if (qqmconic(code))
        bad = out(ya, 90.1) || out(ye, 90.1) || (ya < -0.1 && ye > 0.1) || out(xa, 540.1) ||
              out(xe, 540.1);
    else if (qqmazim(code) && ye - ya <= 90)
        bad = out(xa, 180.1) || out(xe, 180.1) || out(ya, 180.1) || out(ye, 180.1) ||
              out((ya + ye) / 2, 90.1) || xe - xa > 180.1;
    else
        bad = false;
    if (bad) qqwar0(b, 2);
    return bad;
}

// The x axis fit of mapopt: the axis shrinks to the map's true width and
// stays centred where it was.
void fit_xaxis(MapBlock *b) {
    MapState &m = b->map;
    ScaleRecord &r = b->ax.rec;
    double lo = INFINITY, hi = -INFINITY;
    for (double lat = m.ya;; lat += 1) {
        if (lat > m.ye) lat = m.ye;
        for (int j = 0; j <= 360; ++j) {
            double lon = m.xa + (m.xe - m.xa) * j / 360, xp, yp;
            qqmpos(b, lon, lat, &xp, &yp);
            if (xp < lo) lo = xp;
            if (xp > hi) hi = xp;
        }
        if (lat >= m.ye) break;
    }
    if (!(hi >= lo)) return;
    int len = (int)std::ceil(hi - lo) + 1;
    if (len >= r.nxl) return;
    int px = (int)std::lround(m.ox - len / 2);
    if (px + b->dev.nxsh < 0 || px + len - 1 + b->dev.nxsh > b->core.nxp) {
        qqwar1(b, 168, "X-axis does not fit the page");
        return;
    }
    r.nxa = px;
    r.nxl = len;
    r.xorg = px;
    r.xfac = (len - 1) / (r.e[0] - r.a[0]);
    b->ax.legx = px + len - 1;
}

void on_endgrf(AxesBlock *ab) {
    MapBlock *b = qqmapblk(ab);
    if (b->ax.rec.type == 2) qqmapclip(b, 0, 0, 0);
    b->map.code = 0;
    b->map.own = b->map.hemi = 0;
}

void defaults(MapState &m) {
    m.proj = 0;
    m.crvmode = 1;
    m.latlab = 0;
    m.xfit = 0;
    m.world = 0;
    m.plon = m.plat = 0;
    m.refset = 0;
    m.ref[0] = m.ref[1] = 0;
    m.sph = 3.1415927 / 2;
}

void map_init(CoreBlock *cb) {
    MapBlock *b = qqmapblk(cb);
    // The user projection is registered for the process, before or after
    // a session: it outlives the session's defaults.
    MapUserFn user = b->map.user;
    std::memset(&b->map, 0, sizeof b->map);
    defaults(b->map);
    b->map.user = user;
    b->ax.mappos = [](AxesBlock *ab, double x, double y, double *xp, double *yp) {
        qqmpos(qqmapblk(ab), x, y, xp, yp);
    };
    qqaxhook(b, on_endgrf);
}

}  // namespace

extern const Subsystem kxsub_maps = {"maps", nullptr, map_init, nullptr, nullptr, nullptr};

// ---------------------------------------------------------------------------
// Settings.

void projct(const char *copt) noexcept {
    MapBlock *b = qqmapblk(KX_ENTRY("projct"));
    if (!b) return;
    int k = qqkey(b, kProjections, 23, copt);
    if (k) b->map.proj = kCodes[k - 1];
}

void mapmod(const char *copt) noexcept {
    MapBlock *b = qqmapblk(KX_ENTRY("mapmod"));
    if (!b) return;
    int k = qqkey(b, "STRA+INTE+GREA", 3, copt);
    if (k) b->map.crvmode = k - 1;
}

void mapopt(const char *copt, const char *ckey) noexcept {
    MapBlock *b = qqmapblk(KX_ENTRY("mapopt"));
    if (!b) return;
    int key = qqkey(b, "XAXI+WORL", 2, ckey);
    if (key == 1) {
        int k = qqkey(b, "STAN+AUTO", 2, copt);
        if (k) b->map.xfit = k - 1;
    } else if (key == 2) {
        int k = qqkey(b, "COAS+BORD+BOTH", 3, copt);
        if (k) b->map.world = k - 1;
    }
}

void maplab(const char *copt, const char *ckey) noexcept {
    MapBlock *b = qqmapblk(KX_ENTRY("maplab"));
    if (!b) return;
    if (!qqkey(b, "LATI", 1, ckey)) return;
    int k = qqkey(b, "NONE+LEFT+RIGH+BOTH", 4, copt);
    if (k) b->map.latlab = k - 1;
}

void mapref(double ylower, double yupper) noexcept {
    MapBlock *b = qqmapblk(KX_ENTRY("mapref"));
    if (!b) return;
    for (double v : {ylower, yupper})
        if (!(v >= -90.1 && v <= 90.1)) {
            qqwarnd(b, 2, v);
            return;
        }
    if ((ylower < -0.1 && yupper > 0.1) || (yupper < -0.1 && ylower > 0.1)) {
        qqwarnd(b, 2, ylower);
        return;
    }
    b->map.ref[0] = ylower;
    b->map.ref[1] = yupper;
    b->map.refset = 1;
}

void mappol(double xpol, double ypol) noexcept {
    MapBlock *b = qqmapblk(KX_ENTRY("mappol"));
    if (!b) return;
    if (!(xpol >= -180.1 && xpol <= 180.1)) {
        qqwarnd(b, 2, xpol);
        return;
    }
    if (!(ypol >= -90.1 && ypol <= 90.1)) {
        qqwarnd(b, 2, ypol);
        return;
    }
    b->map.plon = xpol;
    b->map.plat = ypol;
}

void mapsph(double xrad) noexcept {
    MapBlock *b = qqmapblk(KX_ENTRY("mapsph"));
    if (!b) return;
    if (!(xrad > 0 && xrad <= 90)) {
        qqwarnd(b, 2, xrad);
        return;
    }
    b->map.sph = xrad * b->core.xdegr;
}

// ---------------------------------------------------------------------------
// grafmp.

void grafmp(double xa, double xe, double xor_, double xstp, double ya, double ye, double yor,
            double ystp) noexcept {
    MapBlock *b = qqmapblk(KX_ENTRY("grafmp"));
    if (!b) return;
    AxesState &ax = b->ax;
    MapState &m = b->map;
    qqautscl(b, 0, &xa, &xe, &xor_, &xstp);
    qqautscl(b, 1, &ya, &ye, &yor, &ystp);
    int code = m.proj;
    if (!(xa < xe) || !(ya < ye)) {
        qqwar0(b, 52);
        return;
    }
    if (bad_limits(b, code, xa, xe, ya, ye)) return;
    // The linear setup and everything else of a plain system, without its
    // axes: a map draws its own.
    int savnogrf = ax.nogrf;
    ax.nogrf = 1;
    int refused = qqgraf(b, xa, xe, xor_, xstp, ya, ye, yor, ystp);
    ax.nogrf = savnogrf;
    if (refused) return;
    ScaleRecord &r = ax.rec;
    r.type = 2;
    r.log[0] = r.log[1] = 0;
    int xl = r.nxl, yl = r.nyl, px = r.nxa, py = r.nya;
    // Map lines reach over the whole sphere: no limits to count against.
    ax.chkaxis = 0;

    m.code = code;
    m.xa = xa;
    m.xe = xe;
    m.ya = ya;
    m.ye = ye;
    m.g = (xa + xe) / 2;
    m.lon0 = m.plon;
    m.lat0 = m.plat;
    m.own = m.hemi = m.south = m.conic = 0;
    m.s = 1;
    m.rm = 0;
    m.ox = px;
    m.oy = py;
    if (code != 0 && code != 100) {
        m.ox += xl / 2;
        if (code >= 10) m.oy -= yl / 2;
        if (qqmpseudo(code)) m.own = 1;
        if (qqmazim(code) && ye - ya > 90) {
            m.own = m.hemi = 1;
            int mm = xl < yl ? xl : yl;
            double D = m.sph;
            switch (code) {
                case 30:
                    m.s = (mm - 1) / (2 * std::tan(std::fmin(D, 85 * b->core.xdegr)));
                    break;
                case 31:
                    m.s = (mm - 1) / (2 * std::sin(D));
                    break;
                case 32:
                    m.s = (mm - 1) / (4 * std::tan(D / 2));
                    break;
                case 33:
                    m.s = (mm - 1) / D;
                    break;
                default:
                    m.s = (mm - 1) / (4 * std::sin(D / 2));
                    break;
            }
            m.clipx = m.ox + b->dev.nxsh;
            m.clipy = m.oy + b->dev.nysh;
            m.clipr = mm / 2 + ax.grace;
            b->dev.axccx = m.clipx;
            b->dev.axccy = m.clipy;
            b->dev.axccr = m.clipr;
            b->dev.axround = 2;
        } else {
            if (qqmazim(code)) {
                m.lon0 = m.g;
                m.lat0 = (ya + ye) / 2;
            }
            if (qqmconic(code)) {
                double r1 = m.refset ? m.ref[0] : ya + 0.25 * (ye - ya);
                double r2 = m.refset ? m.ref[1] : ya + 0.75 * (ye - ya);
                m.south = (ya + ye) / 2 < 0;
                m.c1 = (m.south ? r1 + 90 : 90 - r1) * b->core.xdegr;
                m.c2 = (m.south ? r2 + 90 : 90 - r2) * b->core.xdegr;
                qqmconst(b);
            }
            double X, y1, y2;
            if (qqmconic(code) || qqmazim(code)) {
                // The radius at the mid longitude, before the mean radius
                // is known.
                double Y;
                qqmproj(b, m.g, ya, &X, &Y);
                y1 = qqmconic(code) ? (m.south ? Y : -Y) : std::hypot(X, Y);
                qqmproj(b, m.g, ye, &X, &Y);
                y2 = qqmconic(code) ? (m.south ? Y : -Y) : std::hypot(X, Y);
            } else {
                qqmproj(b, m.g, ya, &X, &y1);
                qqmproj(b, m.g, ye, &X, &y2);
            }
            if (code < 20) {
                m.s = (yl - 1) / (y2 - y1);
            } else if (qqmconic(code)) {
                m.s = (yl - 1) / std::fabs(y2 - y1);
                m.rm = (y1 + y2) / 2;
            } else {
                m.s = (yl - 1) / (std::fabs(y1) + std::fabs(y2));
            }
            if (code < 10) m.oy += y1 * m.s;
        }
        if (m.xfit && !m.hemi) fit_xaxis(b);
        qqmapclip(b, code < 20, qqmazim(code), m.hemi);
    }
    if (ax.nogrf) return;
    if (m.own) {
        outline(b);
        latitude_labels(b);
        return;
    }
    int fx = r.nxa, fl = r.nxl;
    map_axis(b, 0, xa, xe, xor_, xstp, fl, fx, py, 0, ax.grfsid[0]);
    map_axis(b, 1, ya, ye, yor, ystp, yl, fx, py, 1, ax.grfsid[1]);
    if (!ax.ax2) {
        map_axis(b, 0, xa, xe, xor_, xstp, fl, fx, py - yl + 1, 1, ax.grfsid[2]);
        map_axis(b, 1, ya, ye, yor, ystp, yl, fx + fl - 1, py, 0, ax.grfsid[3]);
    }
    qqaxframe(b, fx, py - yl + 1, fx + fl - 1, py, ax.frmthk, ax.frmcol);
}

// ---------------------------------------------------------------------------
// Single map axes.

namespace {

void single_axis(MapBlock *b, int axis, double a, double e, double orl, double step,
                 const char *cname, int side, int pos) {
    AxesState &ax = b->ax;
    if (side != 0 && side != 1) {
        qqwarn(b, 2, side);
        return;
    }
    const ScaleRecord &r = ax.rec;
    int len = axis == 0 ? r.nxl : r.nyl;
    if (qqtstscl(b, a, e, orl, step, len, 0, 0)) return;
    char savname[QQ_NAMELEN + 1];
    std::memcpy(savname, ax.name[axis], sizeof savname);
    qqscpy(ax.name[axis], cname ? cname : "", QQ_NAMELEN);
    int p = axis == 0 ? qqyflpi(b, pos) : pos;
    if (axis == 0)
        map_axis(b, 0, a, e, orl, step, len, r.nxa, p, side, 4);
    else
        map_axis(b, 1, a, e, orl, step, len, p, r.nya, side, 4);
    std::memcpy(ax.name[axis], savname, sizeof savname);
}

}  // namespace

void xaxmap(double a, double b_, double orl, double step, const char *cname, int nt,
            int ny) noexcept {
    MapBlock *b = qqmapblk(KX_ENTRY("xaxmap"));
    if (!b) return;
    single_axis(b, 0, a, b_, orl, step, cname, nt, ny);
}

void yaxmap(double a, double b_, double orl, double step, const char *cname, int nt,
            int nx) noexcept {
    MapBlock *b = qqmapblk(KX_ENTRY("yaxmap"));
    if (!b) return;
    single_axis(b, 1, a, b_, orl, step, cname, nt, nx);
}
