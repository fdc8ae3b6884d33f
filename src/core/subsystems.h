// The subsystems that own a share of glbblk.
//
// Each subsystem describes itself once, in its own source, by a Subsystem
// record: the first values of its fields in a new block, its share of
// qqinit (the defaults of every session, also run by reset("ALL")), what it
// frees when a block goes away, and the rows of reset() that it answers.
// The library's top (src/library.cpp) lists the records in the order in
// which their shares run and hands the list to the core when the library
// is loaded; a subsystem that is added later adds one line there.
#pragma once

struct glbblk;

struct ResetEntry {
    const char *name;          // one of the reset() names, upper case
    void (*run)(glbblk *b);    // puts that setting back to its session default
};

struct Subsystem {
    const char *name;
    void (*first)(glbblk *b);     // first values of a new block, or null
    void (*init)(glbblk *b);      // share of qqinit, or null
    void (*release)(glbblk *b);   // frees what the block holds, or null
    const ResetEntry *resets;     // rows ended by {nullptr, nullptr}, or null
    void (*end)(glbblk *b);       // ends open work at kolfin, before the output closes
};

// Takes the list of subsystems, in the order of their shares; the list
// must outlive every block.  Called once, before the first block is made.
void qqsetsubsystems(const Subsystem *const *list, int n) noexcept;
// Runs every subsystem's first values on a new block.
void qqfirst(glbblk *b) noexcept;
// The defaults of a session, subsystem by subsystem.
void qqinit(glbblk *b) noexcept;
// Frees everything the subsystems hang on a block that goes away.
void qqrelease(glbblk *b) noexcept;
// Ends the subsystems' open work at kolfin (buffers, image and
// transparency modes, PLY output), in the reverse order of the list.
void qqend(glbblk *b) noexcept;
// Runs the reset rows of the given name; returns the number of rows run.
int qqresetrow(glbblk *b, const char *name) noexcept;
// Whether a name is one of the names that reset() takes, and how many
// there are; a subsystem's rows may only use these names.
bool qqresetname(const char *name) noexcept;
int qqresetcount() noexcept;
// The subsystems in the order of their shares; n receives their count.
const Subsystem *const *qqsubsystems(int *n) noexcept;
