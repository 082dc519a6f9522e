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

const Picture* FindPicture(std::int32_t id) {
    const std::span<const Picture> all = AllPictures();
    const auto found =
        std::find_if(all.begin(), all.end(), [id](const Picture& each) { return each.id == id; });
    return found == all.end() ? nullptr : &*found;
}

PictureSize SizeOfPicture(std::int32_t id) {
    const Picture* picture = FindPicture(id);
    if (picture == nullptr || picture->Size() < heightAt + 4) return {};
    return {BigEndian(picture->begin + widthAt), BigEndian(picture->begin + heightAt)};
}
