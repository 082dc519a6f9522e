#include "base/wide_text.h"
#include "tests/support/test.h"

namespace {

TEST(WideText, EveryCharacterConvertsThereAndBack) {
    for (char32_t character = 1; character <= 0x10FFFF; ++character) {
        if (character == 0xD800) character = 0xE000;  // the surrogates are no characters
        std::u16string wide(1, static_cast<char16_t>(character));
        if (character >= 0x10000)
            wide = {static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10)),
                    static_cast<char16_t>(0xDC00 + ((character - 0x10000) & 0x3FF))};
        const std::string text = WideCharToMultiByte(wide);
        ASSERT_EQ(WideText(text, 9), wide) << static_cast<unsigned>(character);
        // Lengths of UTF-8: up to 7, 11, 16 and 21 bits.
        ASSERT_EQ(text.size(), 1U + (character >= 0x80) + (character >= 0x800) + (character >= 0x10000));
    }
}

TEST(WideText, WhatIsNoCharacterBecomesTheReplacementAndACutLeavesNoHalf) {
    const std::string bad = "\xEF\xBF\xBD";  // U+FFFD
    EXPECT_EQ(WideCharToMultiByte(std::u16string{u'a', 0xD800, u'b'}), "a" + bad + "b");
    EXPECT_EQ(WideCharToMultiByte(std::u16string{0xDC00, 0xD800}), bad + bad);  // the wrong way round
    EXPECT_EQ(WideCharToMultiByte(std::u16string_view(u"ab\0cd", 5)), "ab");
    const struct {
        const char* bytes;
        std::size_t units;
        std::u16string wide;
    } rows[] = {
        {"a\xC3", 31, u"a\uFFFD"},                              // cut after one byte of two
        {"\xF0\x9F\x8E", 31, u"\uFFFD\uFFFD\uFFFD"},            // after three of four
        {"\xE0\x80\xAF", 31, u"\uFFFD\uFFFD\uFFFD"},            // the same
        {"\xED\xA0\x80", 31, u"\uFFFD\uFFFD\uFFFD"},            // half a pair
        {"\xF4\x90\x80\x80", 31, u"\uFFFD\uFFFD\uFFFD\uFFFD"},  // above U+10FFFF
        {"\xE2\x82z\xFF", 31, u"\uFFFD\uFFFDz\uFFFD"},
        {"ab\xF0\x9F\x8E\xB9", 3, u"ab"},
        {"ab\xF0\x9F\x8E\xB9", 4, u"ab\U0001F3B9"},
    };
    for (const auto& row : rows) EXPECT_EQ(WideText(row.bytes, row.units), row.wide);
}

}  // namespace
