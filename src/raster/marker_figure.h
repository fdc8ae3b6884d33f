// The figure of a marker kind as one description that the canvas (in
// pixels) and the device layer (in plot coordinates) both draw: the
// corners of its outlines, its strokes and its circles, in a fixed order.
#pragma once

// The shapes that markers combine; qqmarkshape gives those of a kind 0 to
// 23 (0 for another), so that every way of drawing a marker draws the same.
enum {
    QQ_MK_PLUS = 1,
    QQ_MK_CROSS = 2,
    QQ_MK_SQUARE = 4,
    QQ_MK_OCTAGON = 8,
    QQ_MK_TRI_UP = 16,
    QQ_MK_TRI_DOWN = 32,
    QQ_MK_DIAMOND = 64,
    QQ_MK_CIRCLE = 128,
    QQ_MK_HALF_CIRCLE = 256,
    QQ_MK_DISC = 512,
    QQ_MK_HALF_DISC = 1024,
    QQ_MK_FILLED = 2048,
};

// The shapes of marker kinds 0 to 23.
inline constexpr int kQQMarkers[24] = {
    QQ_MK_SQUARE,             // 0
    QQ_MK_OCTAGON,            // 1
    QQ_MK_TRI_UP,             // 2
    QQ_MK_PLUS,               // 3
    QQ_MK_CROSS,              // 4
    QQ_MK_DIAMOND,            // 5
    QQ_MK_TRI_DOWN,           // 6
    QQ_MK_SQUARE | QQ_MK_CROSS,     // 7
    QQ_MK_PLUS | QQ_MK_CROSS,       // 8
    QQ_MK_PLUS | QQ_MK_DIAMOND,     // 9
    QQ_MK_PLUS | QQ_MK_OCTAGON,     // 10
    QQ_MK_TRI_UP | QQ_MK_TRI_DOWN,  // 11
    QQ_MK_PLUS | QQ_MK_SQUARE,      // 12
    QQ_MK_CROSS | QQ_MK_OCTAGON,    // 13
    QQ_MK_SQUARE | QQ_MK_TRI_UP,    // 14
    QQ_MK_CIRCLE,             // 15
    QQ_MK_SQUARE | QQ_MK_FILLED,    // 16
    QQ_MK_OCTAGON | QQ_MK_FILLED,   // 17
    QQ_MK_TRI_UP | QQ_MK_FILLED,    // 18
    QQ_MK_DIAMOND | QQ_MK_FILLED,   // 19
    QQ_MK_TRI_DOWN | QQ_MK_FILLED,  // 20
    QQ_MK_DISC,               // 21
    QQ_MK_HALF_CIRCLE,        // 22
    QQ_MK_HALF_DISC,          // 23
};

inline int qqmarkshape(int kind) noexcept { return kind >= 0 && kind < 24 ? kQQMarkers[kind] : 0; }

// Walks the shapes of marker kind 0 to 23 centred at (x, y) with half-size
// r, in the number type T of the caller.  The sink answers
//   polygon(const T *x, const T *y, int n, bool filled)  a closed outline,
//   segment(T xa, T ya, T xb, T yb)                      a stroke,
//   circle(T x, T y, T r, bool half, bool filled)        a circle or its
//                                                        upper half.
// The octagon's short side is half of r, in T's own division.
template <class T, class Sink>
void qqmarkfigure(int kind, T x, T y, T r, Sink &sink) {
    int shape = qqmarkshape(kind);
    bool filled = (shape & QQ_MK_FILLED) != 0;
    if (shape & QQ_MK_SQUARE) {
        const T sx[4] = {x - r, x + r, x + r, x - r}, sy[4] = {y - r, y - r, y + r, y + r};
        sink.polygon(sx, sy, 4, filled);
    }
    if (shape & QQ_MK_OCTAGON) {
        T q = r / 2;
        const T ox[8] = {x - q, x + q, x + r, x + r, x + q, x - q, x - r, x - r};
        const T oy[8] = {y - r, y - r, y - q, y + q, y + r, y + r, y + q, y - q};
        sink.polygon(ox, oy, 8, filled);
    }
    if (shape & QQ_MK_TRI_UP) {
        const T tx[3] = {x, x + r, x - r}, ty[3] = {y - r, y + r, y + r};
        sink.polygon(tx, ty, 3, filled);
    }
    if (shape & QQ_MK_TRI_DOWN) {
        const T tx[3] = {x, x - r, x + r}, ty[3] = {y + r, y - r, y - r};
        sink.polygon(tx, ty, 3, filled);
    }
    if (shape & QQ_MK_DIAMOND) {
        const T dx[4] = {x, x + r, x, x - r}, dy[4] = {y - r, y, y + r, y};
        sink.polygon(dx, dy, 4, filled);
    }
    if (shape & QQ_MK_PLUS) {
        sink.segment(x - r, y, x + r, y);
        sink.segment(x, y - r, x, y + r);
    }
    if (shape & QQ_MK_CROSS) {
        sink.segment(x - r, y - r, x + r, y + r);
        sink.segment(x - r, y + r, x + r, y - r);
    }
    if (shape & QQ_MK_CIRCLE) sink.circle(x, y, r, false, false);
    if (shape & QQ_MK_HALF_CIRCLE) sink.circle(x, y, r, true, false);
    if (shape & QQ_MK_DISC) sink.circle(x, y, r, false, true);
    if (shape & QQ_MK_HALF_DISC) sink.circle(x, y, r, true, true);
}
