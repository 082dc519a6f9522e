#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "editor/palette.h"
#include "parameters/parameters.h"

// One column of the scrolling picture: what each of its 252 pixels shows, as entries of the palette. The
// bytes come one a band, the lowest note first: 0 for nothing, 1 to 254 for a level, 255 for a note that
// sounds.
//
// Threads: pure functions, [any].

constexpr int pixelsPerBand = 3;
constexpr int columnHeight = bandCount * pixelsPerBand;  // 252 pixels
constexpr std::uint8_t soundingEntry = 255;

struct PaletteColor {
    std::uint8_t red, green, blue;
};

// Entry i below 255 lies i / 255 of the way between two blues, each channel in integers; 255 is the notes'
// orange.
constexpr PaletteColor PaletteEntry(int entry, bool dark = false) {
    const auto channel = [=](unsigned shift) {
        const auto of = [=](const Shade& shade) {
            return static_cast<int>((dark ? shade.dark : shade.light) >> shift & 0xFF);
        };
        if (entry == soundingEntry) return static_cast<std::uint8_t>(of(palette::note));
        const int from = of(palette::quiet), to = of(palette::loud);
        return static_cast<std::uint8_t>(from + (to - from) * entry / 255);
    };
    return {channel(16), channel(8), channel(0)};
}

// From the top down, high notes first. A sounding note takes two pixels of orange with one of the gradient's
// end under them, so that it stands out as a band. Bands without a byte are left empty, further bytes are
// ignored.
constexpr std::array<std::uint8_t, columnHeight> ColumnOf(std::span<const unsigned char> levels) {
    std::array<std::uint8_t, columnHeight> column = {};  // entry 0 is the ground
    for (std::size_t i = 0; i < bandCount; ++i) {
        const std::size_t band = bandCount - 1 - i;
        const std::uint8_t level = band < levels.size() ? levels[band] : std::uint8_t{0};
        if (level == 0) continue;
        const std::size_t top = i * pixelsPerBand;
        column[top] = column[top + 1] = level;
        column[top + 2] = level == soundingEntry ? std::uint8_t{soundingEntry - 1} : level;
    }
    return column;
}
