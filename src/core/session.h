// Helpers of the session shared with the drivers and the other subsystems.
#pragma once

#include "core/core_block.h"

#include <cstdio>

struct CoreBlock;

// The name rule: 0 when the file may be written (name may have changed to
// a new version), else a warning number whose text stands in wrntxt.  In
// DELE mode an existing file stays: it is only tested that it can be
// replaced (not a directory, in a directory that may be written).
int qqvers(CoreBlock *b, char *name) noexcept;

// Every file of the library is written under a temporary name beside its
// final one (".<name>.<pid>.<n>.part" in the same directory) and takes the
// final name only when it is complete: an old file that DELE mode replaces
// stays until then, and a program that dies half-way leaves no file under
// the final name that looks complete.  While it is written, a new final
// name is reserved by an empty file, so that version numbers stay unique.
struct QQOutFile {
    FILE *fp;
    char name[257];  // the final name; the name rule may change it
    char temp[320];  // the temporary name, empty when none
    int reserved;    // 1 when name was created empty to reserve it
};
// Applies the name rule to f->name and opens the temporary file, both
// under the library lock.  0, or the warning number after it is reported
// (the name rule's, or 36).
int qqoutopen(CoreBlock *b, QQOutFile *f, const char *mode) noexcept;
// Closes the stream.  keep 1: the file takes its final name (0, or -1
// after warning 36 when it cannot); keep 0: the temporary file and a
// reservation are removed, and an old file stays as it was.
int qqoutclose(CoreBlock *b, QQOutFile *f, int keep) noexcept;

// Opens the plot file of the session as kolini does; 0 on success, else the
// warning has been reported and level is 0.  Drivers that open their file
// themselves call qqopenf for the name rule and the open under the lock.
int qqopenplot(CoreBlock *b) noexcept;
int qqopenf(CoreBlock *b, const char *mode) noexcept;
// Ends the plot file of the session (sess.fhnd, fname): with keep 1 it
// takes its final name (kolfin; 0, or -1 after warning 36), with keep 0 it
// is dropped (a failed session or a picture that was not written).  A
// driver may have closed fhnd itself before.
int qqplotclose(CoreBlock *b, int keep) noexcept;
// Turns the Y of the interface round when the page origin is at the bottom.
double qqyflp(CoreBlock *b, double y) noexcept;
int qqyflpi(CoreBlock *b, int y) noexcept;
// A length in 1/100 cm in the current unit.
int qqpxu(CoreBlock *b, double length) noexcept;
// The installation directory, resolved into buf (257 bytes): kolenv's
// directory, KOLVEX, kolvex_data beside the library, the build's default.
void qqdatadir(CoreBlock *b, char *buf) noexcept;
// The format of a file as filtyp gives it (-1 unreadable), and the pixel
// size of the raster formats.
int qqfiletype(const char *name, int *w, int *h) noexcept;
// Fails a session that is being opened: level 0 and nothing left open.
void qqkolfail(CoreBlock *b) noexcept;
// The end-of-session banner, in its console form.
int qqbanner(CoreBlock *b, int flag, char *out, int size) noexcept;
