#pragma once
#include <cairo.h>

#include "tests/support/test.h"

// The pixels of a PNG file, four bytes each: blue, green, red, unused.
inline std::vector<std::uint8_t> PixelsOf(const std::string& file) {
    const std::unique_ptr<cairo_surface_t, void (*)(cairo_surface_t*)> surface(
        cairo_image_surface_create_from_png(file.c_str()), cairo_surface_destroy);
    const std::uint8_t* const data = cairo_image_surface_get_data(surface.get());
    const int rowBytes = cairo_image_surface_get_stride(surface.get());
    EXPECT_EQ(rowBytes, 4 * cairo_image_surface_get_width(surface.get())) << file;
    return {data, data + std::ptrdiff_t{rowBytes} * cairo_image_surface_get_height(surface.get())};
}

// How many pixels differ. The documents' pictures are reduced to 256 colours, which is 12 off at most; a line
// of text one pixel off is 100 pixels.
inline int PixelsOff(const std::vector<std::uint8_t>& shown, const std::vector<std::uint8_t>& drawn) {
    EXPECT_EQ(shown.size(), drawn.size());
    const auto isOff = [&](std::size_t at) { return std::abs(shown[at] - drawn[at]) > 40; };
    int off = 0;
    for (std::size_t at = 0; at < std::min(shown.size(), drawn.size()); at += 4)
        off += isOff(at) || isOff(at + 1) || isOff(at + 2);
    return off;
}
