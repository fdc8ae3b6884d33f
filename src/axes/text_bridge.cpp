// The bridge from the axes to the text layer: measuring and drawing label,
// name and title texts at positions of the page grid.
#include <cmath>

#include "axes/axes_block.h"
#include "axes/label_text.h"
#include "core/text.h"
#include "text/text.h"

double qqaxtw(AxesBlock *b, const char *text) noexcept {
    return qqtxtlen(b, text);
}

void qqaxtxt(AxesBlock *b, const char *text, double x, double y, int angle) noexcept {
    if (!text || !text[0]) return;
    TextState &t = b->txt;
    // The axes place every text themselves: no justification, no page flip.
    int hj = t.hjus, vj = t.vjus;
    unsigned char flip = b->core.ynoflp;
    t.hjus = t.vjus = 0;
    b->core.ynoflp = 1;
    qqmesshgt(b, text, qqround(x), qqround(y), t.height, angle);
    b->core.ynoflp = flip;
    t.hjus = hj;
    t.vjus = vj;
}

int qqaxth(AxesBlock *b) noexcept {
    return b->txt.height;
}

void qqaxtext(AxesBlock *b, const char *text, int *nh, int *nu) noexcept {
    qqtxtext(b, text, nh, nu);
}

int qqaxsth(AxesBlock *b, int h) noexcept {
    int old = b->txt.height;
    if (h >= 1 && h != old) {
        b->txt.height = h;
        b->txt.cachesec = 0;
    }
    return old;
}

void qqaxmix(AxesBlock *b, int xexp, AxMixSave *s) noexcept {
    TextState &t = b->txt;
    s->mixon = t.mixon;
    s->texon = t.texon;
    s->smxon = t.smxon;
    s->smxalf = t.smxalf[0];
    s->c1 = t.smxc1[0];
    s->c2 = t.smxc2[0];
    t.mixon = 1;
    t.texon = 0;
    if (xexp) {
        // MATHEMATIC is the third alphabet of the shift list.
        t.smxon = 1;
        t.smxalf[0] = 3;
        t.smxc1[0] = '{';
        t.smxc2[0] = '}';
    }
    t.cachesec = 0;
}

void qqaxmixend(AxesBlock *b, const AxMixSave *s) noexcept {
    TextState &t = b->txt;
    t.mixon = s->mixon;
    t.texon = s->texon;
    t.smxon = s->smxon;
    t.smxalf[0] = s->smxalf;
    t.smxc1[0] = s->c1;
    t.smxc2[0] = s->c2;
    t.cachesec = 0;
}

double qqaxbase(AxesBlock *b) noexcept {
    return b->txt.basfac + b->txt.expfac;
}
double qqaxlinesp(AxesBlock *b) noexcept {
    return b->txt.linsp;
}
