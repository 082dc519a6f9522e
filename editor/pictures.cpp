#include "editor/pictures.h"

#include <algorithm>

namespace {

// A PNG file begins with a signature of 8 bytes; its first chunk is the header: length (4 bytes), name (4),
// width (4), height (4), most significant byte first.
constexpr std::size_t widthAt = 8 + 4 + 4;
constexpr std::size_t heightAt = widthAt + 4;

std::int32_t BigEndian(const unsigned char* at) {
    return at[0] << 24 | at[1] << 16 | at[2] << 8 | at[3];
}

}  // namespace

const Picture* FindPicture(std::int32_t id, std::int32_t scale, Variant variant) {
    const std::span<const Picture> all = AllPictures();
    const auto found = std::find_if(all.begin(), all.end(), [=](const Picture& each) {
        return each.id == id && each.scale == scale && each.variant == variant;
    });
    return found == all.end() ? nullptr : &*found;
}

PictureSize SizeOf(const Picture& picture) {
    if (picture.Size() < heightAt + 4) return {};
    return {BigEndian(picture.begin + widthAt), BigEndian(picture.begin + heightAt)};
}

PictureSize SizeOfPicture(std::int32_t id) {
    const Picture* picture = FindPicture(id);
    return picture != nullptr ? SizeOf(*picture) : PictureSize();
}
