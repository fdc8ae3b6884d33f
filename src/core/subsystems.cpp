#include "core/core_block.h"
#include "core/subsystems.h"

#include <cstring>

namespace {

// The subsystems of the library in the order of their shares, handed over
// from above when the library is loaded (qqsetsubsystems): the core knows
// none of them by name.
const Subsystem *const *g_subsystems = nullptr;
int g_count = 0;
std::size_t g_blocksize = sizeof(CoreBlock);

struct Each {
    const Subsystem *const *begin() const { return g_subsystems; }
    const Subsystem *const *end() const { return g_subsystems + g_count; }
};
const Each kSubsystems;

}  // namespace

void qqsetsubsystems(const Subsystem *const *list, int n, std::size_t blocksize) noexcept {
    g_subsystems = list;
    g_count = list ? n : 0;
    g_blocksize = blocksize > sizeof(CoreBlock) ? blocksize : sizeof(CoreBlock);
}

std::size_t qqblocksize() noexcept {
    return g_blocksize;
}

const Subsystem *const *qqsubsystems(int *n) noexcept {
    *n = g_count;
    return g_subsystems;
}

void qqfirst(CoreBlock *b) noexcept {
    for (const Subsystem *s : kSubsystems)
        if (s->first) s->first(b);
}

void qqinit(CoreBlock *b) noexcept {
    for (const Subsystem *s : kSubsystems)
        if (s->init) s->init(b);
}

void qqrelease(CoreBlock *b) noexcept {
    for (const Subsystem *s : kSubsystems)
        if (s->release) s->release(b);
}

// Higher subsystems end first: a depth buffer paints its polygons into an
// image that image mode, lower down, then sends out.
void qqend(CoreBlock *b) noexcept {
    for (int i = g_count - 1; i >= 0; --i)
        if (g_subsystems[i]->end) g_subsystems[i]->end(b);
}

int qqresetrow(CoreBlock *b, const char *name) noexcept {
    int n = 0;
    for (const Subsystem *s : kSubsystems)
        for (const ResetEntry *r = s->resets; r && r->name; ++r)
            if (std::strcmp(r->name, name) == 0) {
                r->run(b);
                ++n;
            }
    return n;
}
