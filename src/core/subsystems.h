// The subsystems that own a share of glbblk.
//
// Each subsystem describes itself once, in its own source, by a Subsystem
// record: the first values of its fields in a new block, its share of
// qqinit (the defaults of every session, also run by reset("ALL")), what it
// frees when a block goes away, and the rows of reset() that it answers.
// The library's top (src/library.cpp) lists the records in the order in
// which their shares run and hands the list to the core when the library
// is loaded, together with the size of the whole glbblk, which only the top
// can know; a subsystem that is added later adds one line there.
#pragma once

#include <cstddef>

struct CoreBlock;

struct ResetEntry {
    const char *name;          // one of the reset() names, upper case
    void (*run)(CoreBlock *b);  // puts that setting back to its session default
};

struct Subsystem {
    const char *name;
    void (*first)(CoreBlock *b);    // first values of a new block, or null
    void (*init)(CoreBlock *b);     // share of qqinit, or null
    void (*release)(CoreBlock *b);  // frees what the block holds, or null
    const ResetEntry *resets;       // rows ended by {nullptr, nullptr}, or null
    void (*end)(CoreBlock *b);      // ends open work at kolfin, before the output closes
};

// Takes the list of subsystems, in the order of their shares, and the size
// in bytes of the whole block that they share; the list must outlive every
// block.  Called once, before the first block is made.
void qqsetsubsystems(const Subsystem *const *list, int n, std::size_t blocksize) noexcept;
// The size of a block as handed over, never less than the core's own part.
std::size_t qqblocksize() noexcept;
// Runs every subsystem's first values on a new block.
void qqfirst(CoreBlock *b) noexcept;
// The defaults of a session, subsystem by subsystem.
void qqinit(CoreBlock *b) noexcept;
// Frees everything the subsystems hang on a block that goes away.
void qqrelease(CoreBlock *b) noexcept;
// Ends the subsystems' open work at kolfin (buffers, image and
// transparency modes, PLY output), in the reverse order of the list.
void qqend(CoreBlock *b) noexcept;
// Runs the reset rows of the given name; returns the number of rows run.
int qqresetrow(CoreBlock *b, const char *name) noexcept;
// Whether a name is one of the names that reset() takes, and how many
// there are; a subsystem's rows may only use these names.
bool qqresetname(const char *name) noexcept;
int qqresetcount() noexcept;
// The subsystems in the order of their shares; n receives their count.
const Subsystem *const *qqsubsystems(int *n) noexcept;
