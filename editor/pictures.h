#pragma once
#include <cstddef>
#include <cstdint>
#include <span>

// A picture of the editor as it lies in the module: the bytes of a PNG file, under its id.
struct Picture {
    std::int32_t id;
    const unsigned char* begin;
    const unsigned char* end;

    std::size_t Size() const { return static_cast<std::size_t>(end - begin); }  // bytes
};

// Width and height in pixels.
struct PictureSize {
    std::int32_t width = 0;
    std::int32_t height = 0;
};

// All of them, ascending by id; made at build time from resources/. [any]
std::span<const Picture> AllPictures();

// The picture of that id; none for an id that is not there. [any]
const Picture* FindPicture(std::int32_t id);

// Read from the picture's own header, so that the editor's size is known before any toolkit runs; 0 by 0 for
// an id that is not there. [any]
PictureSize SizeOfPicture(std::int32_t id);
