#include "desktop/shell.h"

#include <atomic>

namespace {

std::atomic<IShell*> substitute{nullptr};

}  // namespace

IShell& SystemShell() {
    IShell* const other = substitute.load(std::memory_order_acquire);
    return other != nullptr ? *other : DesktopShell();
}

void SubstituteSystemShell(IShell* shell) {
    substitute.store(shell, std::memory_order_release);
}
