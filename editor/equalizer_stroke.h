#pragma once
#include <algorithm>
#include <cstdint>

#include "parameters/parameters.h"

// A freehand stroke over the bars of the equalizer: turns the mouse's positions, one an event, into bar
// heights. It knows neither toolkit nor colours, only pixels of a control whose upper left corner is 0, 0.
//
// A fast stroke leaves no gaps: the bars between two positions are set by linear interpolation, in integers.
// Outside the control, left or right, the bar at the edge is set once and not rewritten while the mouse moves
// on.
//
// Threads: [ui].
class EqualizerStroke {
public:
    static constexpr std::int32_t frame = 3;  // pixels of a control's height that no bar can fill

    // Of a control `width` by `height` pixels whose bars stand `pitch` pixels apart.
    EqualizerStroke(std::int32_t controlWidth, std::int32_t controlHeight, std::int32_t barPitch)
        : width(controlWidth), highest(controlHeight - frame), pitch(barPitch) {}

    void Begin() { active = true, moved = false; }
    void End() { active = false; }
    bool IsActive() const { return active; }

    // The mouse stands at x, y. Calls set(bar, pixels) for each bar that takes a new height: first the one
    // under the mouse, then those between it and the last one, from there to here.
    template <typename Set>
    void MoveTo(std::int32_t x, std::int32_t y, Set&& set);

private:
    static std::int32_t Clamp(std::int32_t value, std::int32_t most) {
        return std::max(1, std::min(value, most));
    }

    std::int32_t width;
    std::int32_t highest;  // pixels of a bar of value 1
    std::int32_t pitch;
    bool active = false;
    bool moved = false;  // there is a last position
    std::int32_t lastX = 0, lastY = 0;
    std::int32_t lastBar = 0;
};

template <typename Set>
void EqualizerStroke::MoveTo(std::int32_t x, std::int32_t y, Set&& set) {
    const bool outside = x < 0 || x >= width;
    // A stroke that leaves to the right takes the last bar; within, the last pixel may belong to none.
    x = Clamp(x, outside ? std::min(width, pitch * bandCount) - 1 : width - 1);
    y = Clamp(y, highest);
    if (moved && x == lastX && y == lastY) return;
    const std::int32_t bar = x / pitch;
    if (bar >= bandCount) return;

    if (!(moved && outside && bar == lastBar)) set(bar, highest - y);
    if (moved) {
        const std::int32_t distance = bar - lastBar;
        const std::int32_t step = distance < 0 ? -1 : 1;
        for (std::int32_t between = lastBar + step; distance != 0 && between != bar; between += step)
            set(between, highest - (lastY + (y - lastY) * (between - lastBar) / distance));
    }
    moved = true;
    lastX = x, lastY = y, lastBar = bar;
}
