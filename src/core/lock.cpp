#include "core/lock.h"

#include <atomic>
#include <mutex>
#include <new>

#include "core/threads.h"

namespace {

std::atomic<int> thrmod{0};
std::mutex *liblock = nullptr;

}  // namespace

int qqthrmode() noexcept { return thrmod.load(std::memory_order_acquire) == 1 ? 1 : 0; }

void qqsetthrmode(int on) noexcept { thrmod.store(on ? 1 : 0, std::memory_order_release); }

void qqlock(int release) noexcept {
    if (thrmod.load(std::memory_order_acquire) != 1 || !liblock) return;
    if (release)
        liblock->unlock();
    else
        liblock->lock();
}

bool qqlockmake() noexcept {
    liblock = new (std::nothrow) std::mutex;
    return liblock != nullptr;
}

void qqlockfree() noexcept {
    delete liblock;
    liblock = nullptr;
}
