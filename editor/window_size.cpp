#include "editor/window_size.h"

#include <atomic>
#include <string>

#include "desktop/user_store.h"

namespace {

constexpr char sizeKey[] = "Window Size";

// The count above, the percents in the low 16 bits: both are read at once.
constexpr unsigned percentBits = 16;
std::atomic<std::uint32_t> lastChoice{ownWindowSize};

}  // namespace

std::int32_t WindowSizeFor(double scale) {
    std::int32_t fits = ownWindowSize;
    for (const std::int32_t size : windowSizes)
        if (size <= scale * ownWindowSize) fits = size;
    return fits;
}

std::int32_t PreferredWindowSize(std::optional<double> hostScale) {
    const std::string stored = readRegistryString(sizeKey);
    for (const std::int32_t size : windowSizes)
        if (stored == std::to_string(size)) return size;
    return WindowSizeFor(hostScale ? *hostScale : DesktopScale());
}

bool PreferWindowSize(std::int32_t percent) {
    const bool stored = writeRegistryString(sizeKey, std::to_string(percent));
    const std::uint32_t count = (lastChoice >> percentBits) + 1;
    lastChoice = count << percentBits | static_cast<std::uint32_t>(percent);
    return stored;
}

WindowSizeChoice LastWindowSizeChoice() {
    const std::uint32_t both = lastChoice;
    return {both >> percentBits, static_cast<std::int32_t>(both & ((1U << percentBits) - 1))};
}
