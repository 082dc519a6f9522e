#pragma once
#include <cstdint>
#include <optional>

// How large the window is, in percent of the layout's own size: a preference of the user's, kept in the
// per-user store, and until there is one the choice of the desktop.
//
// Threads: [any] but [audio].
constexpr std::int32_t windowSizes[] = {100, 150, 200, 300};
constexpr std::int32_t ownWindowSize = 100;

// The largest of them that is no larger than `scale` times the layout; the smallest one below 1.
std::int32_t WindowSizeFor(double scale);

// Until the user has chosen, it fits the scale that the host or else the desktop says of its display.
std::int32_t PreferredWindowSize(std::optional<double> hostScale = {});
// From now on, for the windows that are open and those to come; false where it cannot be stored, and then
// for those alone that are open.
bool PreferWindowSize(std::int32_t percent);

// How often that was done in this process, and the last one of it: by these an open window notices.
struct WindowSizeChoice {
    std::uint32_t count = 0;
    std::int32_t percent = ownWindowSize;
};
WindowSizeChoice LastWindowSizeChoice();

// What the desktop says of its display: 2 for one with twice the usual dots per inch; 1 where it says
// nothing.
double DesktopScale();
