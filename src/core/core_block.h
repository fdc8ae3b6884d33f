// The core's part of glbblk, the whole state of the library for one thread.
//
// The record is composed of one plain struct per subsystem, each declared in
// its subsystem's own state header and given its values by that subsystem's
// share of the block's first values and of qqinit (see core/subsystems.h).
// The layers stack their records: each layer's record derives from the one
// below it (CoreBlock < ColourBlock < RasterBlock < DeviceBlock < TextBlock
// < AxesBlock < PlotBlock < FieldBlock < SpaceBlock), and the full glbblk is
// composed at the library's top (src/glbblk.h), which hands its size down
// when the library is loaded.  So a layer sees its own state and that of the
// layers beneath it, never a record of a layer above.
//
// The block is allocated zero-filled, so every member must be a plain type:
// no constructors, no owning C++ containers.  Working arrays are raw
// pointers that their subsystem frees in its release step.
#pragma once

#include "core/core_state.h"
#include "core/diag_state.h"
#include "core/session_state.h"

struct CoreBlock {
    CoreState core;     // call frame, level, page
    DiagState diag;     // warnings, protocol, error file
    SessionState sess;  // device choice, file, window, page options
};
