// glbblk: the whole state of the library for one thread.
//
// The record is composed of one plain struct per subsystem; each struct is
// declared in its subsystem's own state header and given its values by that
// subsystem's share of the block's first values and of qqinit (see
// core/subsystems.h).  The block is allocated zero-filled, so every member
// must be a plain type: no constructors, no owning C++ containers.  Working
// arrays are raw pointers that their subsystem frees in its release step.
#pragma once

#include "core/core_state.h"
#include "core/diag_state.h"
#include "core/session_state.h"
#include "devices/device_state.h"
#include "devices/pdf_state.h"
#include "devices/postscript_state.h"
#include "devices/cgm_state.h"
#include "devices/vector_state.h"
#include "plots/style_state.h"
#include "plots/curve_state.h"
#include "raster/canvas_state.h"
#include "colour/colour_state.h"
#include "text/text_state.h"
#include "text/number_state.h"
#include "axes/axes_state.h"
#include "plots/shield_state.h"
#include "plots/bar_state.h"
#include "fields/contour_state.h"
#include "fields/colour_state.h"
#include "plots/zscale_state.h"
#include "space/space_state.h"

struct glbblk {
    CoreState core;       // call frame, level, page
    DiagState diag;       // warnings, protocol, error file
    SessionState sess;    // device choice, file, window, page options
    DeviceState dev;      // polyline buffer, clipping, line style
    VectorState vec;      // drivers of SVG, IPE and Java
    PdfState pdf;         // the PDF document being written, or held for pdfbuf
    PsState ps;           // PostScript driver
    CgmState cgm;         // options of the CGM, HPGL and WMF formats
    ColourState clr;      // colour table and current colour
    CanvasState cnv;      // raster canvas, image mode, transparency
    TextState txt;        // fonts, text settings, the string being drawn
    NumberState num;      // numbers as text
    AxesState ax;         // axis settings and the scaling record
    StyleState sty;       // line style number, shading pattern, fill switches
    CurveState crv;       // curves, symbols, attribute cycles
    ShieldState shl;      // shield regions
    BarState bar;         // bar graph settings and counters
    LegendState leg;      // legend lines, layout and curve records
    ContourState con;     // contour labelling and the contour pen
    ColourPlotState cpl;  // colour matrix plots: painting mode, getmat spreading
    ZScaleState zsc;      // the z colour scale
    SpaceState sp;        // 3-D axis system, z-buffer, lights, surfaces
};
