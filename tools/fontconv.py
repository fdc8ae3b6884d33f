#!/usr/bin/env python3
"""Converts free font data into the glyph tables compiled into the library.

Stroke sections come from the Hershey data (hershey-fonts-data, .jhf files);
the outline first sections of the fonts 11 to 14 from free TrueType/OpenType
fonts (Liberation 2, SIL OFL; TeX Gyre, GUST licence); the mathematical
symbols are drawn here from lines and arcs.  data/README.md names the sources
and their licences.

Each table is written as a point array and an index table of 16-bit words in
the library's glyph format:

  points   packed: one word a point, high byte y, low byte x (signed bytes);
           separate: an x array and a y array of signed words
  index    a stream of glyph records; word 0 of a record is its length in
           words, then stroke entries "count, start" (start is the 1-based
           point number); glyph index k (from 2) is record k - 1

Units: the capital height is 21 in the 20/21 stroke fonts, 7 in the default
font (a 6 wide cell), 200 in the outline fonts.  y counts upward from the
baseline, x from the glyph's left edge; a glyph's width is its largest x.

Usage: python tools/fontconv.py [--hershey DIR] [--out src/text/fontdata.cpp]
"""
import argparse
import math
import os
import sys
import unicodedata

HERSHEY = "/usr/share/hershey-fonts"
OUTLINE_SOURCES = {
    # font table name: source file
    "helve1": "/usr/share/fonts/truetype/liberation2/LiberationSans-Regular.ttf",
    "helves1": "/usr/share/fonts/truetype/liberation2/LiberationSans-Regular.ttf",
    "helvet1": "/usr/share/fonts/truetype/liberation2/LiberationSans-Bold.ttf",
    "serif1": "/usr/share/fonts/truetype/liberation2/LiberationSerif-Regular.ttf",
}

# Internal codes 127 to 264 (the national letters and signs of the STANDARD
# alphabet), as characters.
NATIONAL = ("ÄÖÜäöüßÅØÆåøæÑñÇçËÏëïÁÉÍÓÚáéíóúÀÈÌÒÙàèìòùÂÊÎÔÛâêîôûÃãÕõÝýÿ¡¿ÐðÞþ"
            "ĄŁĽŚŠŞŤŹŽŻąłľśšşťźžżŔĂĹĆČĘĚĎŃŇŐŘŮŰŢŕăĺćčęěďńňőřůűţ"
            "ĞİğıĠġĤĥĦħĴĵŬŭĈĉĊċĜĝŜŝ¤©")
assert len(NATIONAL) == 138


# Every first section carries the whole repertoire: glyph indices 2 to 233,
# internal codes 33 to 264.
NRECORDS = len(NATIONAL) + 94


def code_char(code):
    """The character of an internal code of the STANDARD alphabet."""
    if 32 <= code < 127:
        return chr(code)
    return NATIONAL[code - 127]


# ---------------------------------------------------------------- Hershey

def parse_jhf(path):
    """Glyphs of a .jhf file in file order: (left, right, strokes), Hershey
    coordinates (y downward, x centred)."""
    s = open(path).read().replace("\n", "").replace("\r", "")
    pos, out = 0, []
    while pos < len(s):
        cnt = int(s[pos + 5:pos + 8])
        pos += 8
        body = s[pos:pos + 2 * cnt]
        pos += 2 * cnt
        left, right = ord(body[0]) - 82, ord(body[1]) - 82
        strokes, cur = [], []
        for k in range(1, cnt):
            a, b = body[2 * k], body[2 * k + 1]
            if a == " " and b == "R":
                if cur:
                    strokes.append(cur)
                cur = []
                continue
            cur.append((ord(a) - 82, ord(b) - 82))
        if cur:
            strokes.append(cur)
        out.append((left, right, strokes))
    return out


def jhf_by_ascii(path):
    """A dict character -> strokes in font units (y up from the baseline,
    x from the Hershey centre)."""
    glyphs = parse_jhf(path)
    d = {}
    for n, (l, r, st) in enumerate(glyphs[:95]):
        d[chr(32 + n)] = [[(x, 9 - y) for x, y in s] for s in st]
    return d


# ---------------------------------------------------------------- geometry

def bbox(strokes):
    pts = [p for s in strokes for p in s]
    if not pts:
        return (0, 0, 0, 0)
    xs = [p[0] for p in pts]
    ys = [p[1] for p in pts]
    return min(xs), min(ys), max(xs), max(ys)


def move(strokes, dx, dy):
    return [[(x + dx, y + dy) for x, y in s] for s in strokes]


def scale(strokes, sx, sy=None, cx=0.0, cy=0.0):
    sy = sx if sy is None else sy
    return [[(cx + (x - cx) * sx, cy + (y - cy) * sy) for x, y in s] for s in strokes]


def above_baseline(strokes):
    """The strokes cut off at the baseline: the sharp s is the beta's shape
    without its descender."""
    out = []
    for s in strokes:
        cur = []
        for k, (x, y) in enumerate(s):
            if k > 0:
                px, py = s[k - 1]
                if (py < 0) != (y < 0):
                    t = (0 - py) / (y - py)
                    cut = (px + (x - px) * t, 0.0)
                    if y < 0:
                        cur.append(cut)
                        if len(cur) > 1:
                            out.append(cur)
                        cur = []
                    else:
                        cur = [cut]
            if y >= 0:
                cur.append((x, y))
        if len(cur) > 1:
            out.append(cur)
    return out


def line(x0, y0, x1, y1):
    return [(x0, y0), (x1, y1)]


def arc(cx, cy, rx, ry, a0, a1, n=None):
    if n is None:
        n = max(4, int(abs(a1 - a0) / 22.5 + 0.5))
    return [(cx + rx * math.cos(math.radians(a0 + (a1 - a0) * k / n)),
             cy + ry * math.sin(math.radians(a0 + (a1 - a0) * k / n))) for k in range(n + 1)]


def circle(cx, cy, r, n=16):
    return arc(cx, cy, r, r, 0, 360, n)


# Accents in the units of a 21 high capital, centred on x = 0, standing on
# y = 0 (marks below the baseline hang from y = 0).
def dot(x, y, r=0.8):
    return [(x - r, y), (x + r, y), (x + r, y + 2 * r), (x - r, y + 2 * r), (x - r, y)]


ACCENTS = {
    "\u0301": [line(-1.5, 0, 2, 4)],
    "\u0300": [line(-2, 4, 1.5, 0)],
    "\u0302": [[(-3.5, 0), (0, 3.5), (3.5, 0)]],
    "\u030c": [[(-3.5, 3.5), (0, 0), (3.5, 3.5)]],
    "\u0308": [dot(-3, 0.4), dot(3, 0.4)],
    "\u0303": [[(-4.5, 0.5), (-3, 2.2), (-1.5, 2.5), (1.5, 1), (3, 1.2), (4.5, 3)]],
    "\u030a": [circle(0, 2, 2, 10)],
    "\u0306": [arc(0, 3.5, 3.5, 3.5, 180, 360, 6)],
    "\u0307": [dot(0, 0.4)],
    "\u030b": [line(-3.5, 0, -1.5, 4), line(1, 0, 3, 4)],
    "\u0327": [[(0, 0), (0, -2.5), (2, -3.5), (0.5, -5.5), (-2, -5.5)]],
    "\u0328": [[(0, 0), (-2, -2.5), (-1.5, -4.8), (1.5, -5.2)]],
}


# The dots of the default font's coarse grid: ticks one unit high, which
# survive the rounding onto the grid where a small dot would vanish.
GRID_ACCENTS = {
    "\u0308": [[(-1, 0), (-1, 1)], [(1, 0), (1, 1)]],
    "\u0307": [[(0, 0), (0, 1)]],
    "\u0303": [[(-2, 0), (-1, 1), (1, 0), (2, 1)]],
}
# Letters too wide to compose in the default font's cell of 6.
GRID_LETTERS = {
    "Æ": [[(0, 0), (3, 7), (6, 7)], [(3, 7), (3, 0), (6, 0)], [(1, 3), (5, 3)]],
}


# ---------------------------------------------------------------- glyph sets

class StrokeFont:
    """Strokes of one Hershey face with helpers for composed letters."""

    def __init__(self, chars, unit=1.0, beta=None, accents=None, drawn=None):
        self.c = chars          # char -> strokes
        self.u = unit           # scale of the accents (1 for 21 high caps)
        self.beta = beta        # strokes of a Greek beta, stands for sharp s
        self.own = accents or {}  # marks drawn for this face, in its units
        self.drawn = drawn or {}  # letters drawn for this face whole

    def mark(self, mark):
        if mark in self.own:
            return self.own[mark]
        return scale(ACCENTS[mark], self.u)

    def get(self, ch):
        return self.c.get(ch, [])

    def xheight(self):
        return bbox(self.get("x"))[3]

    def cap(self):
        return bbox(self.get("H"))[3]

    def without_dot(self, ch):
        # i and j: drop the strokes that lie wholly above the x-height
        xh = self.xheight()
        return [s for s in self.get(ch) if min(y for _, y in s) < xh + 0.5 * self.u]

    def accent(self, base, mark, ch):
        x0, y0, x1, y1 = bbox(base)
        cx = (x0 + x1) / 2
        u = self.u
        marks = self.mark(mark)
        if mark in ("\u0327",):
            return base + move(marks, cx, 0)
        if mark == "\u0328":
            return base + move(marks, x1 - 2 * u, 0)
        if mark == "\u030c" and ch in "ďľťĽ":
            # the caron of letters with an ascender is a small stroke at the right
            top = y1 - 3.5 * u
            return base + [line(x1 + 1.5 * u, top, x1 + 2.5 * u, top + 4 * u)]
        top = y1 if y1 > self.xheight() + 1.5 * u else self.xheight()
        if ch.isupper() or ch in "İ":
            top = max(top, self.cap())
        return base + move(marks, cx, top + 1.8 * u)

    def glyph(self, ch):
        if ch in self.c and ord(ch) < 127:
            return self.get(ch)
        if ch in self.drawn:
            return self.drawn[ch]
        u = self.u
        special = {
            "ı": lambda: self.without_dot("i"),
            "ß": lambda: above_baseline(self.beta) if self.beta else self.get("B"),
            "¡": lambda: self.turned("!"),
            "¿": lambda: self.turned("?"),
            "Ø": lambda: self.slashed("O"),
            "ø": lambda: self.slashed("o"),
            "Ł": lambda: self.barred("L", 0.45, slant=True),
            "ł": lambda: self.barred("l", 0.5, slant=True),
            "Ð": lambda: self.barred("D", 0.5, left=True),
            "Đ": lambda: self.barred("D", 0.5, left=True),
            "ð": lambda: self.barred("d", 0.8, right=True),
            "đ": lambda: self.barred("d", 0.8, right=True),
            "Ħ": lambda: self.barred("H", 0.75),
            "ħ": lambda: self.barred("h", 0.8, left=True),
            "Æ": lambda: self.ligature("A", "E", 0.6),
            "æ": lambda: self.ligature("a", "e", 0.75),
            "Þ": self.thorn_upper,
            "þ": self.thorn_lower,
            "¤": self.currency,
            "©": self.copyright,
        }
        if ch in special:
            return special[ch]()
        d = unicodedata.normalize("NFD", ch)
        base_ch, marks = d[0], d[1:]
        if base_ch in "ij" and marks:
            base = self.without_dot(base_ch)
        else:
            base = self.get(base_ch)
        for m in marks:
            base = self.accent(base, m, ch)
        return base

    def turned(self, ch):
        # turned upside down, hanging from the x-height
        st = self.get(ch)
        x0, y0, x1, y1 = bbox(st)
        xh = self.xheight()
        return [[(x0 + x1 - x, y0 + xh - y) for x, y in s] for s in st]

    def slashed(self, ch):
        st = self.get(ch)
        x0, y0, x1, y1 = bbox(st)
        return st + [line(x0 - 1 * self.u, y0 - 1 * self.u, x1 + 1 * self.u, y1 + 1 * self.u)]

    def barred(self, ch, frac, slant=False, left=False, right=False):
        st = self.get(ch)
        x0, y0, x1, y1 = bbox(st)
        y = y0 + (y1 - y0) * frac
        w = 3 * self.u
        if slant:
            sx = x0 + (2 if ch.islower() else 1) * self.u + (x1 - x0) * (0.5 if ch.islower() else 0.0)
            return st + [line(sx - w, y - 2 * self.u, sx + w, y + 2 * self.u)]
        if left:
            return st + [line(x0 - 1.5 * self.u, y, x0 + w + 1.5 * self.u, y)]
        if right:
            return st + [line(x1 - w - 1.5 * self.u, y, x1 + 1.5 * self.u, y)]
        return st + [line(x0 - 1.5 * self.u, y, x1 + 1.5 * self.u, y)]

    def ligature(self, a, b, frac):
        sa, sb = self.get(a), self.get(b)
        ax0, _, ax1, _ = bbox(sa)
        bx0, _, _, _ = bbox(sb)
        return sa + move(sb, ax0 + (ax1 - ax0) * frac - bx0, 0)

    def thorn_upper(self):
        st = move(self.get("P"), 0, -4 * self.u)
        x0, y0, x1, y1 = bbox(self.get("P"))
        stem = [s for s in st if all(abs(p[0] - x0) < 0.6 * self.u for p in s)]
        rest = [s for s in st if s not in stem]
        return rest + [line(x0, 0, x0, y1)]

    def thorn_lower(self):
        st = self.get("p")
        x0, y0, x1, y1 = bbox(st)
        return st + [line(x0, self.xheight(), x0, self.cap() + 0.5 * self.u)]

    def currency(self):
        o = self.get("o")
        x0, y0, x1, y1 = bbox(o)
        cx, cy, r = (x0 + x1) / 2, (y0 + y1) / 2 + 2 * self.u, (x1 - x0) / 2
        st = move(o, 0, 2 * self.u)
        t = 0.45 * r
        for sx in (-1, 1):
            for sy in (-1, 1):
                st.append(line(cx + sx * r * 0.72, cy + sy * r * 0.72, cx + sx * (r * 0.72 + t),
                               cy + sy * (r * 0.72 + t)))
        return st

    def copyright(self):
        cap = self.cap()
        r = cap * 0.55
        cx, cy = r + 0.5 * self.u, cap / 2
        c = self.get("C")
        x0, y0, x1, y1 = bbox(c)
        k = 0.5
        inner = move(scale(c, k), cx - (x0 + x1) / 2 * k, cy - (y0 + y1) / 2 * k)
        return [circle(cx, cy, r, 24)] + inner


def kolalf_chars(src):
    """The default font: Hershey simplex strokes on a grid of 6 by 7 units,
    every glyph centred in its 6 unit cell."""
    out = {}
    for ch, st in src.items():
        g = []
        for s in st:
            pts = []
            for x, y in s:
                p = (min(6, max(0, round(3 + x / 4.0))), round(y / 3.0))
                if not pts or pts[-1] != p:
                    pts.append(p)
            g.append(pts)
        out[ch] = g
    return out


def grid_glyph(st):
    """Rounds composed strokes of the default font onto its unit grid."""
    out = []
    for s in st:
        pts = []
        for x, y in s:
            p = (min(6, max(0, round(x))), round(y))
            if not pts or pts[-1] != p:
                pts.append(p)
        out.append(pts)
    return out


# ---------------------------------------------------------------- maths

def maths_glyphs():
    """The MATHEMATIC section drawn here, by internal code, 20/21 units."""
    A = 9.0   # height of the mathematical axis
    W = 16.0  # width of a relation

    def rel(*st):
        return list(st)

    def ineq(sign, slanted=False, crossed=False, eq=True):
        # sign -1: less, +1: greater
        x0, x1 = (W, 0) if sign < 0 else (0, W)
        st = []
        if False:
            pass
        else:
            st.append([(x0, A + 6), (x1, A + (1 if eq else 0)), (x0, A - (4 if eq else 6))])
        if eq:
            if slanted:
                st.append(line(x1, A - 3, x0, A - 8))
            else:
                st.append(line(0, A - 7, W, A - 7))
        if crossed:
            st.append(line(W * 0.75, A + 9, W * 0.25, A - 10))
        return st

    def prec(sign, eq=False, crossed=False):
        x0, x1 = (W, 0) if sign < 0 else (0, W)
        st = [arc_pts(x0, A + 6, x1, A + 1, sign), arc_pts(x1, A + 1, x0, A - 4, sign)]
        if eq:
            st.append(line(0, A - 7, W, A - 7))
        if crossed:
            st.append(line(W * 0.75, A + 9, W * 0.25, A - 10))
        return st

    def arc_pts(xa, ya, xb, yb, sign):
        return [(xa + (xb - xa) * t - sign * 3.0 * math.sin(math.pi * t), ya + (yb - ya) * t)
                for t in [k / 6 for k in range(7)]]

    def subset(sign, eq=False, square=False, crossed=False):
        r = 6.0
        if square:
            st = [[(W, A + r), (0, A + r), (0, A - r), (W, A - r)]]
        else:
            st = [[(W, A + r)] + arc(r, A, r, r, 90, 270, 8) + [(W, A - r)]]
        if sign > 0:
            st = [[(W - x, y) for x, y in s] for s in st]
        if eq:
            st.append(line(0, A - r - 3, W, A - r - 3))
        if crossed:
            st.append(line(W * 0.75, A + 9, W * 0.25, A - 12))
        return st

    def arrow(x0, y0, x1, y1, double=False, both=False):
        dx, dy = x1 - x0, y1 - y0
        L = math.hypot(dx, dy)
        ux, uy = dx / L, dy / L
        px, py = -uy, ux
        h = 4.0

        def head(xt, yt, ux, uy):
            return [(xt - ux * h + px * h * 0.8, yt - uy * h + py * h * 0.8), (xt, yt),
                    (xt - ux * h - px * h * 0.8, yt - uy * h - py * h * 0.8)]
        if double:
            o = 1.5
            st = [line(x0 + px * o, y0 + py * o, x1 + px * o - ux * 1.5, y1 + py * o - uy * 1.5),
                  line(x0 - px * o, y0 - py * o, x1 - px * o - ux * 1.5, y1 - py * o - uy * 1.5)]
            if both:
                st[0] = line(x0 + px * o + ux * 1.5, y0 + py * o + uy * 1.5, x1 + px * o - ux * 1.5,
                             y1 + py * o - uy * 1.5)
                st[1] = line(x0 - px * o + ux * 1.5, y0 - py * o + uy * 1.5, x1 - px * o - ux * 1.5,
                             y1 - py * o - uy * 1.5)
        else:
            st = [line(x0, y0, x1, y1)]
        st.append(head(x1, y1, ux, uy))
        if both:
            st.append(head(x0, y0, -ux, -uy))
        return st

    def tilde(y, x0=0.0, x1=W):
        return [(x0 + (x1 - x0) * t, y + 1.6 * math.sin(2 * math.pi * t)) for t in [k / 10 for k in range(11)]]

    def circled(inner):
        st = [circle(8, A, 8, 24)]
        return st + inner

    g = {
        66: [line(0, A + 4, W, A + 4), line(0, A, W, A), line(0, A - 4, W, A - 4)],
        68: [line(1, A + 6, 13, A - 6), line(13, A + 6, 1, A - 6)],
        69: [line(0, A, W, A), dot(W / 2, A + 4), dot(W / 2, A - 5.6)],
        70: [line(W / 2, A + 8, W / 2, A - 4), line(0, A + 2, W, A + 2), line(0, A - 6, W, A - 6)],
        71: [line(W / 2, A + 4, W / 2, A - 8), line(0, A - 2, W, A - 2), line(0, A + 6, W, A + 6)],
        72: ineq(-1), 74: ineq(1),
        73: [line(0, A + 3, W, A + 3), line(0, A - 3, W, A - 3), line(W * 0.75, A + 9, W * 0.25, A - 9)],
        75: [line(W / 2, 0, W / 2, 16), line(0, 0, W, 0)],
        76: [[(0, 0)] + arc(7, 7, 7, 7, 180, 0, 8) + [(14, 0)]],
        77: [[(0, 14)] + arc(7, 7, 7, 7, 180, 360, 8) + [(14, 14)]],
        78: subset(-1), 79: subset(1), 82: subset(-1, eq=True), 83: subset(1, eq=True),
        84: [line(5, -3, 5, 21), line(11, -3, 11, 21)],
        85: [[(1, 21), (13, 21), (13, 0), (1, 0)], line(3, 10.5, 13, 10.5)],
        87: [[(W, A + 7)] + arc(7, A, 7, 7, 90, 270, 8) + [(W, A - 7)], line(0, A, W, A)],
        88: [[(W, A + 7)] + arc(7, A, 7, 7, 90, 270, 8) + [(W, A - 7)], line(0, A, W, A),
             line(W * 0.8, A + 11, W * 0.2, A - 11)],
        89: [[(0, A + 7)] + arc(W - 7, A, 7, 7, 90, -90, 8) + [(0, A - 7)], line(0, A, W, A)],
        97: arrow(0, A, 20, A), 98: arrow(6, -2, 6, 20), 99: arrow(20, A, 0, A), 100: arrow(6, 20, 6, -2),
        101: arrow(0, A, 20, A, double=True), 102: arrow(20, A, 0, A, double=True),
        103: arrow(0, A, 22, A, double=True, both=True),
        86: arrow(0, A, 22, A, both=True),
        104: circled([line(0, A, 16, A), line(8, A - 8, 8, A + 8)]),
        105: circled([line(0, A, 16, A)]),
        106: circled([dot(8, A - 0.8, 1.2)]),
        117: circled([line(2.4, A + 5.6, 13.6, A - 5.6), line(2.4, A - 5.6, 13.6, A + 5.6)]),
        107: [[(0, 21), (7, 0), (14, 21)], line(3.5, 10.5, 10.5, 10.5)],
        108: [arc(4.5, A, 4.5, 3.5, 0, 360, 16), arc(13.5, A, 4.5, 3.5, 180, 540, 16)],
        109: [arc(7, 5.5, 5.5, 5.5, 0, 360, 16),
              [(12.5, 5.5), (12.8, 10), (12, 15), (9.5, 18.8), (6, 20.5), (3, 19.5)]],
        110: [[(0, 21), (16, 21), (8, 0), (0, 21)]],
        112: [[(0, 16), (7, 0), (14, 16)]],
        113: [[(0, 0), (7, 16), (14, 0)]],
        114: [[(18, 21), (0, 21), (10, 7), (0, -7), (18, -7)]],
        115: [line(0, 21, 18, 21), line(3, 21, 3, -7), line(15, 21, 15, -7)],
        118: [[(12, 24), (10, 25), (9, 23), (7, 0), (6, -20), (5, -22), (3, -21)]],
        119: [[(12, 24), (10, 25), (9, 23), (7, 0), (6, -20), (5, -22), (3, -21)],
              circle(6.5, 1.5, 4.5, 16)],
        120: [[(0, 9), (3, 11), (8, -2), (18, 25)]],
        121: [circle(8, A, 7, 20), line(15, A + 11, 1, A - 11)],
        122: [tilde(A + 6), line(0, A, W, A), line(0, A - 5, W, A - 5)],
        127: [dot(2, A - 0.8, 1.2)],
        128: [tilde(A + 3), tilde(A - 3)],
        129: ineq(-1, slanted=True), 130: ineq(1, slanted=True),
        131: ineq(-1, eq=False, crossed=True), 132: ineq(1, eq=False, crossed=True),
        133: ineq(-1, crossed=True), 134: ineq(1, crossed=True),
        135: ineq(-1, slanted=True, crossed=True), 136: ineq(1, slanted=True, crossed=True),
        137: prec(-1), 138: prec(1), 139: prec(-1, crossed=True), 140: prec(1, crossed=True),
        141: prec(-1, eq=True), 142: prec(1, eq=True),
        143: prec(-1, eq=True, crossed=True), 144: prec(1, eq=True, crossed=True),
        145: [[(8, A + 6), (0, A), (8, A - 6)], [(16, A + 6), (8, A), (16, A - 6)]],
        146: [[(0, A + 6), (8, A), (0, A - 6)], [(8, A + 6), (16, A), (8, A - 6)]],
        147: [[(7, A + 6), (0, A), (7, A - 6)], [(13, A + 6), (6, A), (13, A - 6)],
              [(19, A + 6), (12, A), (19, A - 6)]],
        148: [[(0, A + 6), (7, A), (0, A - 6)], [(6, A + 6), (13, A), (6, A - 6)],
              [(12, A + 6), (19, A), (12, A - 6)]],
        149: [line(12, A + 10, 4, A - 10)],
        150: subset(-1, eq=True, crossed=True), 151: subset(1, eq=True, crossed=True),
        152: subset(-1, square=True), 153: subset(1, square=True),
        154: subset(-1, eq=True, square=True), 155: subset(1, eq=True, square=True),
        156: [line(0, A + 2, W, A + 2), line(0, A - 3, W, A - 3), dot(W / 2, A + 5)],
        157: [tilde(A + 4), line(0, A - 3, W, A - 3)],
        158: [[(16, A + 5), (13, A + 6), (10, A + 4), (6, A - 4), (3, A - 6), (0, A - 3), (1, A + 3),
               (4, A + 6), (7, A + 4), (11, A - 4), (14, A - 6), (17, A - 5)]],
        159: [[(16, 16), (0, 0), (18, 0)]],
        160: [[(16, 16), (0, 0), (18, 0)], arc(0, 0, 10, 10, 0, 45, 4)],
        161: [line(0, A, 16, A + 8), line(0, A, 16, A - 8), arc(0, A, 10, 10, -25, 25, 4)],
        162: [circle(3, A, 3, 12)],
        # symbols on the free letters
        65: [[(0, 16), (0, 0), (16, 0)], [(0, 4), (4, 4), (4, 0)]],  # a right angle
        67: [circle(4, 17, 3, 12)],                                                # degree
        80: [line(4, 21, 2, 13)],                                                  # prime
        81: [line(4, 21, 2, 13), line(9, 21, 7, 13)],                              # double prime
        90: [line(0, 0, 0, 18), line(0, 9, 14, 9)],                                # turnstile
        111: [line(14, 0, 14, 18), line(0, 9, 14, 9)],                             # reversed
        116: [line(0, A, W, A), line(W, A, W, A - 5)],                             # not sign
    }
    return g


def maths_section_codes():
    """Codes in the order of the section's records: A-Z, a-z, then 127 up."""
    return list(range(65, 91)) + list(range(97, 123)) + list(range(127, 163))


# ---------------------------------------------------------------- outlines

# Faces drawn narrower than their source: helves is the sans face condensed.
CONDENSE = {"helves1": 0.82}


def outline_font(path, chars, budget=180, xscale=1.0):
    """char -> closed contours in units of a 200 high capital, x times
    xscale."""
    from fontTools.ttLib import TTFont
    from fontTools.pens.basePen import BasePen

    font = TTFont(path)
    cmap = font.getBestCmap()
    gs = font.getGlyphSet()

    class Flat(BasePen):
        def __init__(self, gs, steps):
            super().__init__(gs)
            self.contours, self.cur, self.steps = [], None, steps

        def _moveTo(self, p):
            self.cur = [p]

        def _lineTo(self, p):
            self.cur.append(p)

        def _qCurveToOne(self, p1, p2):
            p0 = self.cur[-1]
            n = self.steps(p0, p2)
            for k in range(1, n + 1):
                t = k / n
                a, b, c = (1 - t) ** 2, 2 * t * (1 - t), t * t
                self.cur.append((a * p0[0] + b * p1[0] + c * p2[0], a * p0[1] + b * p1[1] + c * p2[1]))

        def _curveToOne(self, p1, p2, p3):
            p0 = self.cur[-1]
            n = self.steps(p0, p3)
            for k in range(1, n + 1):
                t = k / n
                a, b, c, d = (1 - t) ** 3, 3 * t * (1 - t) ** 2, 3 * t * t * (1 - t), t ** 3
                self.cur.append((a * p0[0] + b * p1[0] + c * p2[0] + d * p3[0],
                                 a * p0[1] + b * p1[1] + c * p2[1] + d * p3[1]))

        def _closePath(self):
            if self.cur:
                if self.cur[-1] != self.cur[0]:
                    self.cur.append(self.cur[0])
                self.contours.append(self.cur)
            self.cur = None

        _endPath = _closePath

    # the capital height sets the scale
    pen = Flat(gs, lambda a, b: 4)
    gs[cmap[ord("H")]].draw(pen)
    cap = max(y for c in pen.contours for _, y in c)
    k = 200.0 / cap
    out = {}
    for ch in chars:
        if ord(ch) not in cmap:
            out[ch] = []
            continue
        seg = 30.0 / k  # font units per step on curves (15 units of 200)
        for attempt in range(12):
            pen = Flat(gs, lambda a, b: max(1, min(8, int(math.hypot(b[0] - a[0], b[1] - a[1]) / seg + 0.999))))
            gs[cmap[ord(ch)]].draw(pen)
            cont = []
            for c in pen.contours:
                pts = []
                for x, y in c:
                    p = (round(x * k * xscale), round(y * k))
                    if not pts or pts[-1] != p:
                        pts.append(p)
                if len(pts) >= 3:
                    cont.append(pts)
            total = sum(len(c) for c in cont) + max(0, len(cont) - 1)
            if total <= budget:
                break
            seg *= 1.4
        out[ch] = cont
    return out


# ---------------------------------------------------------------- tables

class Table:
    """One point array with its index table."""

    def __init__(self, name, packed):
        self.name, self.packed = name, packed
        self.pts = []
        self.index = []

    def add_points(self, strokes):
        """Adds the points of a glyph; returns its stroke entries."""
        entries = []
        for s in strokes:
            # a stroke of one point only moves the pen: it marks a width
            if not s:
                continue
            start = len(self.pts) + 1
            self.pts.extend(s)
            entries.append((len(s), start))
        return entries

    def add_record(self, entries):
        rec = [1 + 2 * len(entries)]
        for n, st in entries:
            rec += [n, st]
        self.index.extend(rec)

    def add_glyph(self, strokes):
        self.add_record(self.add_points(strokes))

    def check(self):
        assert len(self.pts) < 32767, self.name
        for x, y in self.pts:
            if self.packed:
                assert -128 <= x <= 127 and -128 <= y <= 127, (self.name, x, y)
            else:
                assert -32768 <= x <= 32767 and -32768 <= y <= 32767


def normalise(strokes, unit):
    """Moves a glyph so that its left edge is x = 0 and rounds to units."""
    if not strokes:
        return []
    x0 = bbox(strokes)[0]
    out = []
    for s in strokes:
        pts = []
        for x, y in s:
            p = (round((x - x0) / unit), round(y / unit))
            if not pts or pts[-1] != p:
                pts.append(p)
        out.append(pts)
    return out


def stroke_section(name, font, chars, unit=1.0):
    t = Table(name, True)
    for ch in chars:
        t.add_glyph(normalise(font.glyph(ch), unit) if ch else [])
    return t


def latin_chars(n_records):
    return [code_char(c) for c in range(33, 33 + n_records)]


def emit(tables, out):
    lines = ["// Glyph tables, generated by tools/fontconv.py from the font data named in",
             "// data/README.md.  Do not edit; run the converter again.",
             "#include \"text/fontdata.h\"", "", "namespace {", ""]
    for t in tables:
        t.check()
        words = []
        if t.packed:
            xs = [((y & 0xFF) << 8 | (x & 0xFF)) for x, y in t.pts]
            xs = [w - 65536 if w > 32767 else w for w in xs]
            arrays = [("P", xs)]
        else:
            arrays = [("X", [p[0] for p in t.pts]), ("Y", [p[1] for p in t.pts])]
        arrays.append(("I", t.index))
        for suffix, words in arrays:
            lines.append(f"const short k_{t.name}_{suffix}[] = {{")
            for i in range(0, len(words), 16):
                lines.append("    " + ",".join(str(w) for w in words[i:i + 16]) + ",")
            lines.append("};")
        lines.append("")
    lines.append("}  // namespace")
    lines.append("")
    for t in tables:
        if t.packed:
            lines.append(f"extern const GlyphTable kxg_{t.name} = {{k_{t.name}_P, k_{t.name}_P, "
                         f"{len(t.pts)}, 1, k_{t.name}_I, {len(t.index)}}};")
        else:
            lines.append(f"extern const GlyphTable kxg_{t.name} = {{k_{t.name}_X, k_{t.name}_Y, "
                         f"{len(t.pts)}, 0, k_{t.name}_I, {len(t.index)}}};")
    open(out, "w").write("\n".join(lines) + "\n")


def greek_order_map():
    """Latin key -> position in the Greek alphabet (Hershey order)."""
    order = "ABGDEZHQIKLMNXOPRSTYFCUW"  # Α Β Γ Δ Ε Ζ Η Θ Ι Κ Λ Μ Ν Ξ Ο Π Ρ Σ Τ Υ Φ Χ Ψ Ω
    # our keys: C Γ, F Φ, G Χ, Q Θ, U Ψ, W Ω, X Ξ, Y Υ, Z Ζ
    ours = {"A": 0, "B": 1, "C": 2, "D": 3, "E": 4, "Z": 5, "H": 6, "Q": 7, "I": 8, "K": 9,
            "L": 10, "M": 11, "N": 12, "X": 13, "O": 14, "P": 15, "R": 16, "S": 17, "T": 18,
            "Y": 19, "F": 20, "G": 21, "U": 22, "W": 23}
    return ours


def final_sigma(italic):
    """The final sigma, which the Greek sources lack: the italic c of the
    matching face with its lower end run on into a hook below the
    baseline."""
    c = [[(x, 9 - y) for x, y in st] for st in italic[ord("c") - 32][2]]
    # the lower end of the bowl: the stroke end nearest the baseline
    ends = [(st[0], st) for st in c] + [(st[-1], st) for st in c]
    (tx, ty), _ = min(ends, key=lambda e: e[0][1])
    tail = [(tx, ty), (tx + 2.5, ty - 1.5), (tx + 3, ty - 3.5), (tx + 1.5, ty - 5.5), (tx - 1, ty - 6.5)]
    return c + [tail]


def greek_section(name, path, unit=1.0, extra=True, grid=None):
    """Greek letters on the Latin keys, then (for the large section) the
    accented Greek letters of codes 127 to 147."""
    glyphs = parse_jhf(path)
    caps = [[[(x, 9 - y) for x, y in s] for s in glyphs[33 + k][2]] for k in range(24)]
    smalls = [[[(x, 9 - y) for x, y in s] for s in glyphs[65 + k][2]] for k in range(24)]
    ours = greek_order_map()
    chars = {}
    for key, k in ours.items():
        chars[key] = caps[k]
        chars[key.lower()] = smalls[k]
    if extra:
        chars["ς"] = final_sigma(parse_jhf(os.path.join(os.path.dirname(path), "timesi.jhf")))
    f = StrokeFont(chars, 1.0)
    seq = [chars.get(chr(c), []) for c in range(65, 91)] + [chars.get(chr(c), []) for c in range(97, 123)]
    if extra:
        # 127 to 147: Ά Έ Ή Ί Ό Ύ Ώ ΐ Ϊ Ϋ ά έ ή ί ΰ ϊ ϋ ό ύ ώ ς
        acc = [("A", "\u0301"), ("E", "\u0301"), ("H", "\u0301"), ("I", "\u0301"), ("O", "\u0301"),
               ("Y", "\u0301"), ("W", "\u0301"), ("i", "\u0308\u0301"), ("I", "\u0308"), ("Y", "\u0308"),
               ("a", "\u0301"), ("e", "\u0301"), ("h", "\u0301"), ("i", "\u0301"), ("y", "\u0308\u0301"),
               ("i", "\u0308"), ("y", "\u0308"), ("o", "\u0301"), ("y", "\u0301"), ("w", "\u0301"), ("ς", "")]
        for base, marks in acc:
            st = chars[base]
            for m in marks:
                if base.isupper() and m == "\u0301":
                    # the tonos of a capital stands before it
                    x0, _, _, y1 = bbox(st)
                    st = move(st, 4, 0) + move(ACCENTS[m], x0 - 1, y1 - 4)
                else:
                    st = f.accent(st, m, base)
            seq.append(st)
    t = Table(name, True)
    for st in seq:
        if grid:
            # the default font's cell: centred, the cell's right edge marked
            st = grid(st)
            t.add_glyph(st + [[(6, 0)]] if st else [])
        else:
            t.add_glyph(normalise(st, unit))
    return t


def main():
    ap = argparse.ArgumentParser()
    ap.add_argument("--hershey", default=HERSHEY)
    ap.add_argument("--out", default=os.path.join(os.path.dirname(__file__), "..", "src", "text",
                                                 "fontdata.cpp"))
    ap.add_argument("--no-outline", action="store_true")
    a = ap.parse_args()
    H = lambda n: os.path.join(a.hershey, n + ".jhf")
    tables = []

    beta_c = parse_jhf(H("greekc"))[66][2]
    beta_s = parse_jhf(H("greeks"))[66][2]
    beta = lambda g: [[(x, 9 - y) for x, y in s] for s in g]

    # the default font: simplex strokes on the 6 by 7 grid
    simplex = jhf_by_ascii(H("rowmans"))
    kol = kolalf_chars(simplex)
    kol_beta = kolalf_chars({"b": beta(beta_s)})["b"]
    kf = StrokeFont(kol, 1.0 / 3.0, beta=kol_beta, accents=GRID_ACCENTS,
                    drawn=GRID_LETTERS)
    t = Table("kolalf1", True)
    for ch in latin_chars(NRECORDS):
        st = kf.glyph(ch) if ord(ch) >= 127 else kol.get(ch, [])
        t.add_glyph(grid_glyph(st))
    tables.append(t)
    kg = greek_section("kolalf_greek", H("greeks"), extra=False,
                       grid=lambda st: grid_glyph(kolalf_chars({"g": st})["g"]))
    tables.append(kg)

    faces = [("simplx1", "rowmans", beta_s), ("complx1", "timesr", beta_c),
             ("duplx1", "rowmand", beta_c), ("triplx1", "rowmant", beta_c),
             ("gothic1", "gothiceng", beta_c)]
    for name, src, b in faces:
        f = StrokeFont(jhf_by_ascii(H(src)), 1.0, beta=beta(b))
        tables.append(stroke_section(name, f, latin_chars(NRECORDS)))
    tables.append(greek_section("simplx_greek", H("greeks"), extra=False))
    tables.append(greek_section("complx_greek", H("greekc"), extra=True))

    # italic of complx: small letters and the three umlauts
    ti = StrokeFont(jhf_by_ascii(H("timesi")), 1.0)
    tables.append(stroke_section("complx_italic", ti, [chr(c) for c in range(97, 123)] + list("äöü")))
    # gothic italic and script: the 52 letters; script also the umlauts and sharp s
    gi = StrokeFont(jhf_by_ascii(H("gothicita")), 1.0)
    letters = [chr(c) for c in range(65, 91)] + [chr(c) for c in range(97, 123)]
    tables.append(stroke_section("gothic_italic", gi, letters))
    gg = StrokeFont(jhf_by_ascii(H("gothicger")), 1.0, beta=beta(beta_c))
    tables.append(stroke_section("gothic_script", gg, letters + list("ÄÖÜäöüß")))
    sc = StrokeFont(jhf_by_ascii(H("scripts")), 1.0, beta=beta(beta_s))
    tables.append(stroke_section("script", sc, letters + list("ÄÖÜäöüß")))

    # Cyrillic: the Hershey file's keys, then the section order of the library
    cy = jhf_by_ascii(H("cyrillic"))
    up = {"А": "A", "Б": "B", "В": "V", "Г": "G", "Д": "D", "Е": "[", "Ж": "H", "З": "Z", "И": "I",
          "Й": "E", "К": "K", "Л": "L", "М": "M", "Н": "N", "О": "O", "П": "P", "Р": "R", "С": "S",
          "Т": "T", "У": "Y", "Ф": "F", "Х": "X", "Ц": "`", "Ч": "J", "Ш": "Q", "Щ": "W", "Ъ": "]",
          "Ы": "$", "Ь": "_", "Э": "C", "Ю": "U", "Я": "^"}
    lo = {"а": "a", "б": "b", "в": "v", "г": "g", "д": "d", "е": "{", "ж": "h", "з": "z", "и": "i",
          "й": "e", "к": "k", "л": "l", "м": "m", "н": "n", "о": "o", "п": "p", "р": "r", "с": "s",
          "т": "t", "у": "y", "ф": "f", "х": "x", "ц": "%", "ч": "j", "ш": "q", "щ": "w", "ъ": "|",
          "ы": "&", "ь": "~", "э": "c", "ю": "u", "я": "}"}
    cyr = {u: cy[k] for u, k in list(up.items()) + list(lo.items())}
    cf = StrokeFont(cyr, 1.0)
    # the source's small э is a copy of its capital: drawn as the small с
    # turned round with the bar of the letter
    c_small = cyr["с"]
    x0, y0, x1, y1 = bbox(c_small)
    cyr["э"] = [[(x0 + x1 - x, y) for x, y in st] for st in c_small] + [line(x0 + 3, y1 / 2, x1 - 0.5, y1 / 2)]
    # the source's capital short i is a copy of its И: the breve is added
    cyr["Й"] = cf.accent(cyr["И"], "\u0306", "Й")
    cyr["Ё"] = cf.accent(cyr["Е"], "\u0308", "Ё")
    cyr["ё"] = cf.accent(cyr["е"], "\u0308", "ё")
    # RUSSIAN codes: 36 to 38, 60 to 62, 65 to 94, 97 to 126 (section order)
    keys = ("АБЭДЙФГЖИЧКЛМНОПШРСТЮВЩХУЗЕЁЦЯ", "абэдйфгжичклмнопшрстювщхузеёцяь")
    order = ["Ъ", "Ы", "Ь", "ъ", "ы", "ь"] + list(keys[0][:30]) + list(keys[1][:30])
    t = Table("russian", True)
    for u in order:
        t.add_glyph(normalise(cyr[u], 1.0))
    tables.append(t)

    # the mathematical symbols
    mg = maths_glyphs()
    t = Table("maths", True)
    for c in maths_section_codes():
        st = mg.get(c, [])
        t.add_glyph(normalise(st, 1.0) if st else [])
    tables.append(t)

    if not a.no_outline:
        chars = latin_chars(NRECORDS)
        for name, path in OUTLINE_SOURCES.items():
            g = outline_font(path, chars, xscale=CONDENSE.get(name, 1.0))
            t = Table(name, False)
            for ch in chars:
                st = g[ch]
                x0 = bbox(st)[0] if st else 0
                t.add_glyph([[(x - x0, y) for x, y in c] for c in st])
            tables.append(t)
    emit(tables, a.out)
    for t in tables:
        print(f"{t.name:16s} {'packed' if t.packed else 'separate'} points {len(t.pts):6d} index {len(t.index):6d}")


if __name__ == "__main__":
    main()
