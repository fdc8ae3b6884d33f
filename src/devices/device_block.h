// The block as the device layer and its drivers see it.
//
// Each layer's record derives from the one below, so a layer reaches the
// state of every layer beneath it and none above; the whole glbblk is
// composed at the library's top.  A routine of this layer turns the block
// that the guard gives it into this record by qqdevblk, the layer's one
// accessor.  Plain data only: the block is allocated zero-filled.
#pragma once

#include "devices/cgm_state.h"
#include "devices/device_state.h"
#include "devices/pdf_state.h"
#include "devices/postscript_state.h"
#include "devices/vector_state.h"
#include "raster/raster_block.h"

struct DeviceBlock : RasterBlock {
    DeviceState dev;  // polyline buffer, clipping, line style
    VectorState vec;  // drivers of SVG, IPE and Java
    PdfState pdf;     // the PDF document being written, or held for pdfbuf
    PsState ps;       // PostScript driver
    CgmState cgm;     // options of the CGM, HPGL and WMF formats
};

inline DeviceBlock *qqdevblk(CoreBlock *b) noexcept {
    return static_cast<DeviceBlock *>(b);
}
inline const DeviceBlock *qqdevblk(const CoreBlock *b) noexcept {
    return static_cast<const DeviceBlock *>(b);
}
