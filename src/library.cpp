// The library as a whole: the subsystems it is made of, in the order in
// which their shares of a new block, of qqinit and of kolfin run, and the
// size of the record they compose (glbblk.h).  This is the one place that
// names them all; the core receives the list and the size when the library
// is loaded and knows none of them itself.
//
// The build compiles this file into every program and module that uses
// the library (not into the static archive, where nothing would pull it
// in), so its registration always runs.
#include "core/subsystems.h"
#include "glbblk.h"

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
extern const Subsystem kxsub_bars;
extern const Subsystem kxsub_figures;
extern const Subsystem kxsub_pies;
extern const Subsystem kxsub_contours;
extern const Subsystem kxsub_colourplots;
extern const Subsystem kxsub_postscript;
extern const Subsystem kxsub_cgm;
extern const Subsystem kxsub_zscale;
extern const Subsystem kxsub_space;
extern const Subsystem kxsub_surfaces;
extern const Subsystem kxsub_maps;

namespace {

// The session's page comes first; the device layer sets up clipping and
// line style, and the raster canvas takes them, before the colour table is
// loaded and the foreground colour reaches the driver.
const Subsystem *const kSubsystems[] = {
    &kxsub_core,    &kxsub_diagnostics, &kxsub_session, &kxsub_devices, &kxsub_vector,
    &kxsub_pdf,     &kxsub_postscript,  &kxsub_cgm,     &kxsub_canvas,  &kxsub_colour,
    &kxsub_text,    &kxsub_numbers,     &kxsub_axes,    &kxsub_styles,  &kxsub_curves,
    &kxsub_shields, &kxsub_bars,    &kxsub_figures, &kxsub_pies,    &kxsub_contours,
    &kxsub_colourplots, &kxsub_zscale, &kxsub_space, &kxsub_surfaces, &kxsub_maps,
};

// Hands the list over before any routine can make a block.
const struct Register {
    Register() noexcept {
        qqsetsubsystems(kSubsystems, (int)(sizeof kSubsystems / sizeof kSubsystems[0]),
                        sizeof(glbblk));
    }
} kRegister;

}  // namespace
