// What the PDF driver offers besides its device: a finished picture as a
// PDF file of its own.
#pragma once

#include "devices/device_block.h"

#include <cstdio>

struct DeviceBlock;
struct qqcanvas;

// Writes the canvas (the rectangle of imgclp, as the picture files keep
// it) as a one-page PDF document, the image scaled to the paper of the
// page formats and turned when wider than high, to an open binary
// stream, compressed as pdfmod says.  Format 9 of expimg.  The stream stays the
// caller's.  Returns 0, -1 for a write error, -2 without memory.
int qqpdfexport(DeviceBlock *b, FILE *fp, const qqcanvas *cv) noexcept;
