// The library lock and the flag that puts the thread table in force.
//
// One mutual-exclusion object guards the claim and release of thread slots,
// the check-then-create of output files, the opening of the error file and
// the end banner.  It exists only between thrini and thrfin; while one block
// serves every thread the caller serialises, and taking the lock does
// nothing.  It sits below the guard and the warnings, which both take it.
#pragma once

// With 0 takes the library lock, with 1 releases it; does nothing unless
// the thread table is in force.
void qqlock(int release) noexcept;
// Creates the lock, still out of force; false when it cannot be made.
bool qqlockmake() noexcept;
// Destroys the lock; the table must be out of force.
void qqlockfree() noexcept;
// Puts the thread table in force (1) or out of it (0).  Whatever the table
// holds must be in place before it is put in force.
void qqsetthrmode(int on) noexcept;
