// The legend's view of the text and axis layers.
#include <cstring>

#include "axes/axes_state.h"
#include "axes/label_text.h"
#include "devices/device.h"
#include "plots/fill.h"
#include "plots/legend_link.h"
#include "plots/plot_block.h"

int qqleghgt(PlotBlock *b) noexcept {
    return qqaxth(b);
}
double qqleglsp(PlotBlock *b) noexcept {
    return qqaxlinesp(b);
}

namespace {
// The text bridge takes terminated texts; legend lines are cut from the
// caller's buffer.
void copy_text(const char *text, int n, char *out) {
    if (n > 256) n = 256;
    std::memcpy(out, text, (size_t)n);
    out[n] = '\0';
}
}  // namespace

int qqlegwidth(PlotBlock *b, const char *text, int n) noexcept {
    char t[257];
    copy_text(text, n, t);
    return (int)qqaxtw(b, t);
}

void qqlegtext(PlotBlock *b, const char *text, int n, int x, int y) noexcept {
    char t[257];
    copy_text(text, n, t);
    qqaxtxt(b, t, x, y, 0);
}
int qqlegframe(PlotBlock *b) noexcept {
    return b->ax.frmthk;
}

void qqlegbox(PlotBlock *b, int x, int y, int w, int h, int f) noexcept {
    qqframe(b, x, y, w, h, f, 0.0, -1);
    qqflsh(b);
}

void qqlegaxis(PlotBlock *b, LegendAxis *a) noexcept {
    const ScaleRecord &r = b->ax.rec;
    a->px = r.nxa;
    a->py = r.nya;
    a->xlen = r.nxl;
    a->ylen = r.nyl;
    a->rx = b->ax.legx;
    a->ty = b->ax.legy;
}

char qqlegmix(PlotBlock *b) noexcept {
    return b->txt.mixchr[3] ? b->txt.mixchr[3] : '/';
}
