#include "platform/wide_text.h"

#include "gtest/gtest.h"

namespace {

const std::string bad = "\xEF\xBF\xBD";  // U+FFFD

TEST(WideText, EveryCharacterGoesThereAndBack) {
    for (char32_t character = 1; character <= 0x10FFFF; ++character) {
        if (character == 0xD800) character = 0xE000;  // the halves are no characters
        std::u16string wide;
        if (character >= 0x10000) {
            wide.push_back(static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10)));
            wide.push_back(static_cast<char16_t>(0xDC00 + ((character - 0x10000) & 0x3FF)));
        } else {
            wide.push_back(static_cast<char16_t>(character));
        }
        const std::string text = WideCharToMultiByte(wide);
        ASSERT_EQ(WideText(text, 9), wide) << static_cast<unsigned>(character);
        // Lengths of UTF-8: up to 7, 11, 16 and 21 bits.
        ASSERT_EQ(text.size(), character < 0x80      ? 1U
                               : character < 0x800   ? 2U
                               : character < 0x10000 ? 3U
                                                     : 4U);
    }
}

TEST(WideText, WhatIsNoCharacterBecomesTheReplacement) {
    EXPECT_EQ(WideCharToMultiByte(std::u16string{u'a', 0xD800, u'b'}), "a" + bad + "b");
    EXPECT_EQ(WideCharToMultiByte(std::u16string{0xDC00, 0xD800}), bad + bad);  // the wrong way round
    EXPECT_EQ(WideCharToMultiByte(std::u16string_view(u"ab\0cd", 5)), "ab");
    struct Row {
        const char* bytes;
        std::u16string wide;
    };
    const Row rows[] = {
        {"a\xC3", u"a\uFFFD"},                              // cut after one byte of two
        {"\xF0\x9F\x8E", u"\uFFFD\uFFFD\uFFFD"},            // after three of four
        {"\xC0\xAF", u"\uFFFD\uFFFD"},                      // "/" in a form that is too long
        {"\xE0\x80\xAF", u"\uFFFD\uFFFD\uFFFD"},            // the same
        {"\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},            // half a pair
        {"\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},  // above U+10FFFF
        {"\x80z\xFF", u"\uFFFDz\uFFFD"},
        {"\xE2\x82z", u"\uFFFD\uFFFDz"},
    };
    for (const Row& row : rows) EXPECT_EQ(WideText(row.bytes, 31), row.wide);
}

TEST(WideText, ACutNeverLeavesHalfAPair) {
    EXPECT_EQ(WideText("ab\xF0\x9F\x8E\xB9", 3), u"ab");
    EXPECT_EQ(WideText("ab\xF0\x9F\x8E\xB9", 4), u"ab\U0001F3B9");
    EXPECT_EQ(WideText("abc", 0), u"");
}

}  // namespace
