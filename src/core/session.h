// Helpers of the session shared with the drivers and the other subsystems.
#pragma once

#include <cstdio>

struct glbblk;

// The name rule: 0 when the file may be written (name may have changed to
// a new version), else a warning number whose text stands in wrntxt.
int qqvers(glbblk *b, char *name) noexcept;
// Opens the plot file of the session as kolini does; 0 on success, else the
// warning has been reported and level is 0.  Drivers that open their file
// themselves call qqopenf for the name rule and the open under the lock.
int qqopenplot(glbblk *b) noexcept;
int qqopenf(glbblk *b, const char *mode) noexcept;
// Opens a file that a routine writes besides the plot file (a colour
// table, an image): the name rule and the open run under the library
// lock, and name (257 bytes) may become a new version.  Returns the
// stream, or null after reporting the name rule's warning or 36.
FILE *qqopenw(glbblk *b, char *name, const char *mode) noexcept;
// Turns the Y of the interface round when the page origin is at the bottom.
double qqyflp(glbblk *b, double y) noexcept;
int qqyflpi(glbblk *b, int y) noexcept;
// A length in 1/100 cm in the current unit.
int qqpxu(glbblk *b, double length) noexcept;
// The installation directory, resolved into buf (257 bytes): kolenv's
// directory, KOLVEX, kolvex_data beside the library, the build's default.
void qqdatadir(glbblk *b, char *buf) noexcept;
// The command line with which symfil starts an outside driver for the
// finished plot file (device and status words already checked); cmd holds
// 256 bytes.  Returns its length.
int qqsymcmd(glbblk *b, const char *device, const char *status, char *cmd) noexcept;
// Fails a session that is being opened: level 0 and nothing left open.
void qqkolfail(glbblk *b) noexcept;
// The end-of-session banner, in its console form.
int qqbanner(glbblk *b, int flag, char *out, int size) noexcept;
