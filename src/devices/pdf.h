// What the PDF driver offers besides its device: a finished picture as a
// PDF file of its own.
#pragma once

#include <cstdio>

struct glbblk;
struct qqcanvas;

// Writes the canvas as a one-page PDF document (the image scaled to the
// paper of the page formats, turned when wider than high) to an open
// binary stream, compressed as pdfmod says.  The stream stays the
// caller's.  Returns 0, -1 for a write error, -2 without memory.
int qqpdfexport(glbblk *b, FILE *fp, const qqcanvas *cv) noexcept;
