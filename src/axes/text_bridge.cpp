// The bridge from the axes to the text layer: measuring and drawing label,
// name and title texts.
#include <cstring>

#include "axes/label_text.h"
#include "core/glbblk.h"

// Until the stroke fonts are drawn, texts are measured by an estimate and
// not drawn.
double qqaxtw(glbblk *b, const char *text) noexcept {
    return 0.75 * qqaxth(b) * (double)std::strlen(text ? text : "");
}
void qqaxtxt(glbblk *, const char *, double, double, int) noexcept {}
int qqaxth(glbblk *b) noexcept { return b->ax.hname > 0 ? b->ax.hname : 36; }
int qqaxsth(glbblk *b, int h) noexcept { return h + 0 * qqaxth(b); }
int qqaxmix(glbblk *, int) noexcept { return 0; }
void qqaxmixend(glbblk *, int) noexcept {}
double qqaxbase(glbblk *) noexcept { return 1.4; }
double qqaxlinesp(glbblk *) noexcept { return 1.5; }
