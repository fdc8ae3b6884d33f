#include "core/subsystems.h"

#include <cstring>

// Declared by each subsystem in its own source.
extern const Subsystem kxsub_core;
extern const Subsystem kxsub_diagnostics;
extern const Subsystem kxsub_session;
extern const Subsystem kxsub_canvas;
extern const Subsystem kxsub_colour;
extern const Subsystem kxsub_devices;
extern const Subsystem kxsub_vector;
extern const Subsystem kxsub_pdf;
extern const Subsystem kxsub_text;
extern const Subsystem kxsub_numbers;
extern const Subsystem kxsub_axes;
extern const Subsystem kxsub_styles;
extern const Subsystem kxsub_curves;
extern const Subsystem kxsub_shields;
extern const Subsystem kxsub_contours;
extern const Subsystem kxsub_colourplots;
extern const Subsystem kxsub_postscript;
extern const Subsystem kxsub_zscale;
extern const Subsystem kxsub_space;

namespace {

// In the order of their shares: the session's page comes first; the device
// layer sets up clipping and line style, and the raster canvas takes them,
// before the colour table is loaded and the foreground colour reaches the
// driver.
const Subsystem *const kSubsystems[] = {
    &kxsub_core,
    &kxsub_diagnostics,
    &kxsub_session,
    &kxsub_devices,
    &kxsub_vector,
    &kxsub_pdf,
    &kxsub_postscript,
    &kxsub_canvas,
    &kxsub_colour,
    &kxsub_text,
    &kxsub_numbers,
    &kxsub_axes,
    &kxsub_styles,
    &kxsub_curves,
    &kxsub_shields,
    &kxsub_contours,
    &kxsub_colourplots,
    &kxsub_zscale,
    &kxsub_space,
};

}  // namespace

const Subsystem *const *qqsubsystems(int *n) noexcept {
    *n = (int)(sizeof kSubsystems / sizeof kSubsystems[0]);
    return kSubsystems;
}

void qqfirst(glbblk *b) noexcept {
    for (const Subsystem *s : kSubsystems)
        if (s->first) s->first(b);
}

void qqinit(glbblk *b) noexcept {
    for (const Subsystem *s : kSubsystems)
        if (s->init) s->init(b);
}

void qqrelease(glbblk *b) noexcept {
    for (const Subsystem *s : kSubsystems)
        if (s->release) s->release(b);
}

void qqend(glbblk *b) noexcept {
    for (const Subsystem *s : kSubsystems)
        if (s->end) s->end(b);
}

int qqresetrow(glbblk *b, const char *name) noexcept {
    int n = 0;
    for (const Subsystem *s : kSubsystems)
        for (const ResetEntry *r = s->resets; r && r->name; ++r)
            if (std::strcmp(r->name, name) == 0) {
                r->run(b);
                ++n;
            }
    return n;
}
