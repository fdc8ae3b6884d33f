// Whether the thread table is in force, for the layers above the core that
// must know how the blocks are shared (the Python module decides by it
// whether a call may give up the interpreter lock).
#pragma once

// 1 between thrini and thrfin, when each thread has a block of its own;
// 0 while the one block serves every thread.
int qqthrmode() noexcept;
