// What the library needs of the operating system, in one thin layer below
// everything else, so that a port (or the window system) replaces one file.
// Plain C types only: nothing here knows the library's state.
#pragma once

#include <cstddef>

// Whether a file or a directory of this name exists.
bool qqpexists(const char *name) noexcept;
bool qqpisdir(const char *name) noexcept;
// The absolute name of the file that holds the code at addr (the module,
// the shared library or the program); false when it cannot be told.
bool qqpcodefile(const void *addr, char *path, size_t size) noexcept;
// A number of the calling thread, unique while it runs.
unsigned qqpthread() noexcept;
// Whether a display for windows is configured.
bool qqpdisplay() noexcept;
// Runs a program found on the search path with the arguments argv (argv[0]
// its name, null-terminated), without a command processor, so that no
// argument is ever read as a command; its output is dropped.  Waits for it
// and returns its exit status, or -1 when it could not be started.
int qqprun(const char *const *argv) noexcept;
