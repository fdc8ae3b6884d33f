#include "core/family.h"

#include <cstring>

#include "core/core_block.h"

unsigned qqdevclr(const CoreBlock *b) noexcept {
    const DeviceKey *k = qqfamkey(b->core.fam, b->core.devcod);
    return k ? k->colour : 0;
}

int qqdevkind(const CoreBlock *b) noexcept {
    return b->core.fam ? b->core.fam->kind : 0;
}

void qqdefdev(CoreBlock *b) noexcept {
    CoreState &c = b->core;
    c.fam = c.deffam;
    c.devcod = c.fam->keys[0].code;
    std::memcpy(b->sess.devkey, c.fam->keys[0].key, 5);
}
