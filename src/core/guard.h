// The call frame: how a routine finds its thread's block and tests the level.
//
// Every public routine opens with exactly one guard:
//
//     glbblk *b = KX_ENTRY("color");
//     if (!b) return;
//
// KX_ENTRY takes the routine's level rule from core/levels.h at compile
// time.  A hard guard returns null (after warning 3) when the level is
// wrong; a soft guard always returns the block.
#pragma once

#include "core/glbblk.h"
#include "core/levels.h"

// Block manager operations of qqglob.
enum { QQ_FIND = 0, QQ_DELETE = 1, QQ_OPEN = 2, QQ_CLOSE = 3, QQ_BYINDEX = 4 };

glbblk *qqglob(int op, int *value) noexcept;
glbblk *qqcur() noexcept;
void qqlock(int release) noexcept;
glbblk *qqentry(int minlevel, int maxlevel, const char *name) noexcept;
glbblk *qqsoft(const char *name) noexcept;
// A block for a routine without level test: found or created, rtnam set.
glbblk *qqfree(const char *name) noexcept;

inline glbblk *qqguard(GuardKind kind, int lo, int hi, const char *name) noexcept {
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
