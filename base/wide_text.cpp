#include "base/wide_text.h"

#include <cstdint>

namespace {

constexpr char32_t noCharacter = 0xFFFD;

constexpr bool IsHighSurrogate(char32_t unit) {
    return unit >= 0xD800 && unit < 0xDC00;
}
constexpr bool IsLowSurrogate(char32_t unit) {
    return unit >= 0xDC00 && unit < 0xE000;
}

void AppendUtf8(std::string& text, char32_t character) {
    const auto tail = [&text](char32_t bits) { text.push_back(static_cast<char>(0x80U | (bits & 0x3FU))); };
    if (character < 0x80) {
        text.push_back(static_cast<char>(character));
    } else if (character < 0x800) {
        text.push_back(static_cast<char>(0xC0U | character >> 6));
        tail(character);
    } else if (character < 0x10000) {
        text.push_back(static_cast<char>(0xE0U | character >> 12));
        tail(character >> 6);
        tail(character);
    } else {
        text.push_back(static_cast<char>(0xF0U | character >> 18));
        tail(character >> 12);
        tail(character >> 6);
        tail(character);
    }
}

}  // namespace

DecodedCharacter DecodeFront(std::string_view text) {
    const auto byte = [text](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    const char32_t first = byte(0);
    if (first < 0x80) return {first, 1};
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || text.size() < length) return {noCharacter, 1};
    char32_t character = first & (0x7FU >> length);
    for (std::size_t at = 1; at < length; ++at) {
        if ((byte(at) & 0xC0U) != 0x80U) return {noCharacter, 1};
        character = character << 6 | (byte(at) & 0x3FU);
    }
    constexpr char32_t lowest[] = {0, 0, 0x80, 0x800, 0x10000};  // of a sequence of this length
    const bool legal = character >= lowest[length] && character <= 0x10FFFF && !IsHighSurrogate(character) &&
                       !IsLowSurrogate(character);
    return legal ? DecodedCharacter{character, length} : DecodedCharacter{noCharacter, 1};
}

std::string WideCharToMultiByte(std::u16string_view wide) {
    wide = wide.substr(0, wide.find(u'\0'));
    std::string text;
    for (std::size_t at = 0; at < wide.size(); ++at) {
        const char32_t unit = wide[at];
        const char32_t next = at + 1 < wide.size() ? wide[at + 1] : 0;
        if (IsHighSurrogate(unit) && IsLowSurrogate(next)) {
            AppendUtf8(text, 0x10000 + ((unit - 0xD800) << 10) + (next - 0xDC00));
            ++at;
        } else {
            AppendUtf8(text, IsHighSurrogate(unit) || IsLowSurrogate(unit) ? noCharacter : unit);
        }
    }
    return text;
}

std::u16string WideText(std::string_view utf8, std::size_t maxUnits) {
    std::u16string wide;
    while (!utf8.empty()) {
        const DecodedCharacter front = DecodeFront(utf8);
        utf8.remove_prefix(front.length);
        const bool pair = front.character >= 0x10000;
        if (wide.size() + (pair ? 2 : 1) > maxUnits) break;
        if (pair) {
            wide.push_back(static_cast<char16_t>(0xD800 + ((front.character - 0x10000) >> 10)));
            wide.push_back(static_cast<char16_t>(0xDC00 + (front.character & 0x3FFU)));
        } else {
            wide.push_back(static_cast<char16_t>(front.character));
        }
    }
    return wide;
}
