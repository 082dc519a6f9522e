#include "editor/line_breaks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;

std::vector<std::string> InTen(std::string_view text) {  // of a font in which every byte is as wide
    return BreakLines(text, 10, [](std::string_view piece) { return static_cast<double>(piece.size()); });
}

}  // namespace

TEST(LineBreaks, AnAddressKeepsEachOfItsCharacters) {
    EXPECT_THAT(InTen("No help at\nhttps://ab-c.example/d-e/f?g=h-i&j"),
                ElementsAre("No help at", "https://", "ab-c.examp", "le/d-e/f?", "g=h-i&j"));
}

TEST(LineBreaks, WordsGoToTheNextLineWithoutTheirBlank) {
    EXPECT_THAT(InTen("one two three twenty-one\n\nend"),
                ElementsAre("one two", "three", "twenty-one", "", "end"));
    EXPECT_THAT(InTen(""), ElementsAre(""));
    EXPECT_THAT(InTen("123456789\xC3\xA4z"), ElementsAre("123456789", "\xC3\xA4z"));  // an umlaut stays whole
}
