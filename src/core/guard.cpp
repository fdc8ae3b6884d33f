// The thread table, the block manager and the call guards.
//
// Without thrini the whole process has one block (oneblk), whichever thread
// calls.  With thrini each thread claims a slot; a thread looks for its own
// slot without the lock, which is sound because only the owning thread
// changes its slot after the claim, and claims and deletes run under the
// library lock.  The slot fields are atomics so that the unlocked scan is
// well defined while another thread claims a slot.
#include "core/core_block.h"
#include "core/guard.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>

#include "core/lock.h"
#include "core/subsystems.h"
#include "core/text.h"
#include "core/threads.h"
#include "core/warnings.h"
#include "kolvex.h"
#include "platform/platform.h"

namespace {

struct Slot {
    std::atomic<unsigned> id;
    std::atomic<int> state;  // 0 free, 1 in use
    std::atomic<CoreBlock *> blk;
};

int thrmax = 0;
Slot *slots = nullptr;
CoreBlock *oneblk = nullptr;
std::mutex tablelock;  // serialises thrini/thrfin against each other

unsigned thread_id() noexcept {
    static thread_local unsigned tid = qqpthread();
    return tid;
}

[[noreturn]] void fatal(const char *text, int status) noexcept {
    qqconsole(text);
    std::exit(status);
}

CoreBlock *new_block() noexcept {
    auto *b = static_cast<CoreBlock *>(std::calloc(1, qqblocksize()));
    if (!b) fatal("Not enough memory for global variables!\n", 1);
    return b;
}

}  // namespace

void qqconsole(const char *text) noexcept {
    if (!stdout) return;
    std::fputs(text, stdout);
    std::fflush(stdout);
}

CoreBlock *qqglob(int op, int *value) noexcept {
    switch (op) {
    case QQ_FIND: {
        if (value) *value = 1;
        if (qqthrmode() == 1) {
            unsigned me = thread_id();
            for (int i = 0; i < thrmax; ++i)
                if (slots[i].state.load(std::memory_order_acquire) == 1 &&
                    slots[i].id.load(std::memory_order_relaxed) == me)
                    return slots[i].blk.load(std::memory_order_acquire);
            qqlock(0);
            int free = -1;
            for (int i = 0; i < thrmax && free < 0; ++i)
                if (slots[i].state.load(std::memory_order_relaxed) == 0) free = i;
            if (free < 0) {
                qqlock(1);
                fatal(">>>> Too many threads!\n", 1);
            }
            slots[free].id.store(me, std::memory_order_relaxed);
            slots[free].blk.store(nullptr, std::memory_order_relaxed);
            slots[free].state.store(1, std::memory_order_release);
            qqlock(1);
            CoreBlock *b = new_block();
            slots[free].blk.store(b, std::memory_order_release);
            if (value) *value = 0;
            return b;
        }
        if (oneblk) return oneblk;
        oneblk = new_block();
        if (value) *value = 0;
        return oneblk;
    }
    case QQ_DELETE:
        if (qqthrmode() == 1) {
            unsigned me = thread_id();
            qqlock(0);
            for (int i = 0; i < thrmax; ++i) {
                if (slots[i].state.load() == 1 && slots[i].id.load() == me) {
                    std::free(slots[i].blk.load());
                    slots[i].blk.store(nullptr);
                    slots[i].state.store(0);
                    break;
                }
            }
            qqlock(1);
        } else {
            std::free(oneblk);
            oneblk = nullptr;
        }
        return nullptr;
    case QQ_OPEN: {
        int n = *value;
        if (qqthrmode() == 1) {  // a table is open already: keep it
            *value = 3;
            return nullptr;
        }
        bool locked = qqlockmake();
        slots = static_cast<Slot *>(std::calloc((size_t)n, sizeof(Slot)));
        if (!locked || !slots) {
            qqlockfree();
            std::free(slots);
            slots = nullptr;
            *value = 2;
            return nullptr;
        }
        for (int i = 0; i < n; ++i) new (&slots[i]) Slot();
        thrmax = n;
        *value = oneblk ? 3 : 0;
        qqsetthrmode(1);
        return nullptr;
    }
    case QQ_CLOSE:
        qqsetthrmode(0);
        for (int i = 0; i < thrmax; ++i)
            if (slots[i].state.load() == 1) std::free(slots[i].blk.load());
        std::free(slots);
        slots = nullptr;
        thrmax = 0;
        qqlockfree();
        return nullptr;
    case QQ_BYINDEX: {
        int i = *value;
        if (i < 0 || i >= thrmax || !slots) {
            *value = 1;
            return nullptr;
        }
        *value = 0;
        return slots[i].state.load() == 1 ? slots[i].blk.load() : nullptr;
    }
    }
    return nullptr;
}

CoreBlock *qqcur() noexcept {
    if (qqthrmode() != 1) return oneblk;
    unsigned me = thread_id();
    for (int i = 0; i < thrmax; ++i)
        if (slots[i].state.load(std::memory_order_acquire) == 1 &&
            slots[i].id.load(std::memory_order_relaxed) == me)
            return slots[i].blk.load(std::memory_order_acquire);
    return nullptr;
}

static CoreBlock *find_block(const char *name) noexcept {
    int found = 1;
    CoreBlock *b = qqglob(QQ_FIND, &found);
    if (!found) qqfirst(b);
    qqscpy(b->core.rtnam, name, 8);
    return b;
}

CoreBlock *qqentry(int minlevel, int maxlevel, const char *name) noexcept {
    CoreBlock *b = find_block(name);
    int lev = (int)b->core.level;
    if (lev >= minlevel && lev <= maxlevel) return b;
    if (lev == 0) b->diag.outu = 6;
    qqwarn(b, 3, lev);
    return nullptr;
}

CoreBlock *qqsoft(const char *name) noexcept {
    CoreBlock *b = qqcur();
    if (b) {
        qqscpy(b->core.rtnam, name, 8);
        if (b->core.level < 1 || b->core.level > 3) qqwarn(b, 3, (int)b->core.level);
        return b;
    }
    qqentry(1, 3, name);
    return qqcur();
}

CoreBlock *qqfree(const char *name) noexcept {
    return find_block(name);
}

// ---- thread routines ---------------------------------------------------------

namespace {
int thrcal = 0;  // slot count of a successful thrini, 0 without one

void release_block_state(CoreBlock *b) noexcept {
    qqrelease(b);
}
}  // namespace

void thrini(int n) noexcept {
    std::lock_guard<std::mutex> guard(tablelock);
    if (thrcal) {
        qqconsole(">>>> thrini is already called before!\n");
        return;
    }
    if (n < 1) {
        qqconsole(">>>> Invalid parameter in thrini!\n");
        return;
    }
    int value = n;
    qqglob(QQ_OPEN, &value);
    if (value == 2) fatal(">>>> Not enough memory in thrini!\n", 0);
    if (value == 3) {
        qqconsole(">>>> A KOLVEX routine is called before thrini!\n");
        return;
    }
    thrcal = n;
}

void thrfin() noexcept {
    std::lock_guard<std::mutex> guard(tablelock);
    if (!thrcal) {
        qqconsole(">>>> thrini is not called before!\n");
        return;
    }
    for (int i = 0; i < thrcal; ++i) {
        int value = i;
        CoreBlock *b = qqglob(QQ_BYINDEX, &value);
        if (b) release_block_state(b);
    }
    qqglob(QQ_CLOSE, nullptr);
    thrcal = 0;
}

void delglb() noexcept {
    CoreBlock *b = qqcur();
    if (!b || b->core.level != 0) return;
    release_block_state(b);
    qqglob(QQ_DELETE, nullptr);
}
