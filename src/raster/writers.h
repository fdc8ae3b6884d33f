// The raster file writers, as the session and the image routines call them.
#pragma once

#include "raster/raster_block.h"

#include <cstddef>
#include <cstdio>

struct RasterBlock;

// Format numbers of qqwrite.
enum { QQ_WTIFF = 1, QQ_WIMAG = 2, QQ_WPNG = 4, QQ_WPPM = 5, QQ_WBMP = 6, QQ_WGIF = 7,
       QQ_WPS = 8 };

// Writes the canvas of the session to an open binary stream in a format,
// keeping the rectangle of imgclp.  Reports the format's warnings itself
// (36 file error, 53 no memory, 126 for zlib).  Returns 0 on success, the
// writer's negative result otherwise; name is the file's name, for the
// record.  A stream that reports a write error counts as a file error.
int qqwrite(RasterBlock *b, FILE *fp, const char *name, int format) noexcept;

// Writes the canvas into a named file as rimage, rtiff and their kin do:
// the name rule of the session, a binary stream, qqwrite, and no file left
// behind when the writer failed.  Returns qqwrite's result, or -1 when
// the file could not be opened (the warning is reported).
int qqwritefile(RasterBlock *b, const char *file, int format) noexcept;

// The PNG of the whole canvas into memory: with size 0 nothing is stored
// and the result is the length that the PNG needs.  Returns the length, 0
// when the buffer is too small, -2 without memory, -3 to -5 for zlib.
long qqpngmem(RasterBlock *b, unsigned char *buffer, size_t size) noexcept;
