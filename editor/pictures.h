#pragma once
#include <cstddef>
#include <cstdint>
#include <span>

#include "editor/window_look.h"

// A picture of the editor as it lies in the module: the bytes of a PNG file, under its id, scale and variant.
struct Picture {
    std::int32_t id;
    std::int32_t scale;  // 1 to 3: its pixels for each of the layout
    Variant variant;
    const unsigned char* begin;
    const unsigned char* end;

    std::size_t Size() const { return static_cast<std::size_t>(end - begin); }  // bytes
};

// Width and height in pixels.
struct PictureSize {
    std::int32_t width = 0;
    std::int32_t height = 0;
};

// All of them; made at build time from resources/. [any]
std::span<const Picture> AllPictures();

// The picture of that id, scale and variant; none where there is no such one. [any]
const Picture* FindPicture(std::int32_t id, std::int32_t scale = 1, Variant variant = Variant::light);

// The pictures to use in a window of that zoom: its own, or twice as fine where it is no whole number. [any]
constexpr std::int32_t PictureScale(double zoom) {
    const auto whole = static_cast<std::int32_t>(zoom);
    return whole == zoom ? whole : static_cast<std::int32_t>(2 * zoom);
}

// Read from the picture's own header, so that the editor's size is known before any toolkit runs. [any]
PictureSize SizeOf(const Picture& picture);
// At scale 1; 0 by 0 for an id that is not there. [any]
PictureSize SizeOfPicture(std::int32_t id);
