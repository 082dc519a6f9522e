#pragma once
#include <cstddef>
#include <string>
#include <string_view>

// Names and texts of devices are UTF-16 where a system hands them over, and UTF-8 everywhere else. Both
// directions take any input and give legal text: what is no character becomes U+FFFD.
//
// Threads: [any]; pure functions that allocate their result.

// The character at the front of a text that is not empty, and how many bytes it takes. One byte that starts
// no legal sequence counts as U+FFFD: too long a form, a surrogate and what lies above U+10FFFF are not
// legal.
struct DecodedCharacter {
    char32_t character;
    std::size_t length;
    bool IsLegal() const { return character != U'\uFFFD' || length > 1; }
};
DecodedCharacter DecodeFront(std::string_view utf8);

// A lone surrogate becomes U+FFFD. The text ends at its first zero unit, if it has one.
std::string WideCharToMultiByte(std::u16string_view wide);

// At most `maxUnits` units, never half a surrogate pair. Bytes that are no legal UTF-8, a sequence cut short
// among them, become one U+FFFD each.
std::u16string WideText(std::string_view utf8, std::size_t maxUnits);
