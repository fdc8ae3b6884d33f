// What the text drivers SVG, IPE and Java share: the writer of their file,
// the polyline collection of the two XML formats, the time stamp, the
// accented letters and the clip tests.  Private to src/devices.
//
// Every writer goes straight to the session's plot file (the formats fix
// their own line breaks, so the 80-column line buffer is not used) and
// formats numbers without the C locale.  Write errors are ignored: a full
// disk shows in the file, not in the session.
#pragma once

#include "devices/device_block.h"

struct DeviceBlock;

// Text as it stands.
void qqvput(DeviceBlock *b, const char *text) noexcept;
// One byte.
void qqvchr(DeviceBlock *b, int c) noexcept;
// "%.<prec>f".
void qqvnum(DeviceBlock *b, double v, int prec) noexcept;
// "%d".
void qqvint(DeviceBlock *b, long long v) noexcept;
// "%02x%02x%02x".
void qqvhex(DeviceBlock *b, int r, int g, int bl) noexcept;

// The point buffer of SVG and IPE: allocated at open (0, or warning 53
// has been reported), freed at close and when the block goes away.
int qqvalloc(DeviceBlock *b) noexcept;
void qqvfree(DeviceBlock *b) noexcept;

// The polyline collection of SVG and IPE, one position in device units at
// a time.  op is QQ_DRAW, QQ_MOVE or QQ_ENDPATH; any other op writes what
// is collected and ends the polyline as QQ_ENDPATH does.  write_poly
// writes the collected points (b->vec.ptx, pty, npts) as one element.
void qqvcollect(DeviceBlock *b, double x, double y, int op,
                void (*write_poly)(DeviceBlock *)) noexcept;

// The file date of qqfiletime: year, month, day, hour, minute, second.
void qqvtime(int t[6]) noexcept;
// "dd.mm.yyyy" and "hh:mm:ss" (11 and 9 bytes).
void qqvdate(char *date, char *clock) noexcept;

// The ISO-8859-1 byte of an internal character code: codes below 127 as
// they are, 127 to 186 the accented letters, anything else a blank.
int qqvlatin(int code) noexcept;

// The angle in which a driver writes text: the text angle, turned with a
// portrait-rotated page so that the letters run along the rotated lines.
int qqvangle(DeviceBlock *b, int angle) noexcept;
// The baseline position of a hardware character in plot coordinates: the
// pen lifted by the baseline shifts, centred in its cell in fixed pitch.
struct QQHwChar;
void qqvplace(DeviceBlock *b, const QQHwChar *c, double *x, double *y) noexcept;

// Whether every point lies in the clip window (0.001 of tolerance).
bool qqvinside(DeviceBlock *b, const double *x, const double *y, int n) noexcept;
// Orders the corners of a rectangle and cuts it to the clip window;
// false when nothing is left.
bool qqvcutrect(DeviceBlock *b, int *x1, int *y1, int *x2, int *y2) noexcept;
