// The call frame: how a routine finds its thread's block and tests the level.
//
// Every public routine opens with exactly one guard, and turns the block
// into the record of its own layer by that layer's accessor:
//
//     ColourBlock *b = qqclrblk(KX_ENTRY("color"));
//     if (!b) return;
//
// The guard knows only the core's part of the block (core/core_block.h).
// KX_ENTRY takes the routine's level rule from core/levels.h at compile
// time.  A hard guard returns null (after warning 3) when the level is
// wrong; a soft guard always returns the block.
#pragma once

#include "core/core_block.h"
#include "core/levels.h"
#include "core/lock.h"

// Block manager operations of qqglob.
enum { QQ_FIND = 0, QQ_DELETE = 1, QQ_OPEN = 2, QQ_CLOSE = 3, QQ_BYINDEX = 4 };

CoreBlock *qqglob(int op, int *value) noexcept;
CoreBlock *qqcur() noexcept;
CoreBlock *qqentry(int minlevel, int maxlevel, const char *name) noexcept;
CoreBlock *qqsoft(const char *name) noexcept;
// A block for a routine without level test: found or created, rtnam set.
CoreBlock *qqfree(const char *name) noexcept;

inline CoreBlock *qqguard(GuardKind kind, int lo, int hi, const char *name) noexcept {
    switch (kind) {
    case GuardKind::Hard: return qqentry(lo, hi, name);
    case GuardKind::Soft: return qqsoft(name);
    default: return qqfree(name);
    }
}

#define KX_ENTRY(name)                                                        \
    ([]() noexcept {                                                          \
        constexpr LevelRule kx_rule_ = level_rule_for(name);                  \
        static_assert(kx_rule_.kind != GuardKind::Unknown,                    \
                      "routine " name " has no level rule in core/levels.h"); \
        return qqguard(kx_rule_.kind, kx_rule_.lo, kx_rule_.hi, name);        \
    }())

// Messages of the thread table go straight to the process's standard
// output: no block may exist when they are written.
void qqconsole(const char *text) noexcept;
