#include "editor/palette.h"
#include "tests/support/test.h"

namespace {

// Relative luminance and contrast as WCAG 2.1 defines them.
double Luminance(std::uint32_t rgb) {
    const auto linear = [rgb](unsigned shift) {
        const double c = (rgb >> shift & 0xFF) / 255.0;
        return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(16) + 0.7152 * linear(8) + 0.0722 * linear(0);
}
double Contrast(std::uint32_t a, std::uint32_t b) {
    const double one = Luminance(a) + 0.05, other = Luminance(b) + 0.05;
    return std::max(one, other) / std::min(one, other);
}

TEST(Palette, TextHasTheContrastThatPeopleWithWeakEyesNeed) {
    using namespace palette;
    constexpr Shade white = {0xffffff, 0xffffff};
    const std::pair<Shade, std::vector<Shade>> rows[] = {
        {text, {groundTop, groundBottom, panel, inset, plate, openMenu, buttonTop, buttonBottom, box}},
        {faintText, {openMenu, buttonTop, buttonBottom}},
        {palette::link, {panel, groundTop}},
        {white, {onTop, onBottom}},
        {chosenText, {chosen}},
        {{text.dark, text.dark}, {{menu.dark, menu.dark}}},  // light, both are fixed at 3.8
    };
    for (const auto& [letters, grounds] : rows)
        for (const Shade& ground : grounds) {
            EXPECT_GE(Contrast(letters.light, ground.light), 4.5) << std::hex << ground.light;
            EXPECT_GE(Contrast(letters.dark, ground.dark), 4.5) << std::hex << ground.dark;
        }
}

}  // namespace
