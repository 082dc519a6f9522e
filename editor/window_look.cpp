#include "editor/window_look.h"

#include <atomic>
#include <string>

#include "desktop/user_store.h"

namespace {

constexpr char lookKey[] = "Window Look";
constexpr char darkLook[] = "dark", lightLook[] = "light";

std::atomic<std::uint32_t> changes{0};            // of the variant, so an odd count is dark
std::atomic<Variant> lastStored{Variant::light};  // as this process has written or read it

}  // namespace

void ReadPreferredVariant() {
    const Variant stored = readRegistryString(lookKey) == darkLook ? Variant::dark : Variant::light;
    if (lastStored.exchange(stored) != stored) SetVariant(stored);
}

bool PreferVariant(Variant wanted) {
    SetVariant(wanted);
    const bool stored = writeRegistryString(lookKey, wanted == Variant::dark ? darkLook : lightLook);
    if (stored) lastStored = wanted;
    return stored;
}

Variant CurrentVariant() {
    return changes % 2 != 0 ? Variant::dark : Variant::light;
}

std::uint32_t VariantChanges() {
    return changes;
}

void SetVariant(Variant wanted) {
    std::uint32_t before = changes;
    while ((before % 2 != 0) != (wanted == Variant::dark) &&
           !changes.compare_exchange_weak(before, before + 1)) {
    }
}
