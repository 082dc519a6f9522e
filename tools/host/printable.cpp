#include "tools/host/printable.h"

#include <array>
#include <cstdio>

namespace {

// Bytes of the UTF-8 character that `text` begins with; 0 where it is none. Over-long forms, surrogates and
// what lies beyond U+10FFFF are none.
std::size_t CharacterLength(std::string_view text) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned first = byte(0);
    const std::size_t length = first < 0x80                     ? 1
                               : first >= 0xC2 && first <= 0xDF ? 2
                               : first >= 0xE0 && first <= 0xEF ? 3
                               : first >= 0xF0 && first <= 0xF4 ? 4
                                                                : 0;
    if (length == 0 || text.size() < length) return 0;
    for (std::size_t i = 1; i < length; ++i)
        if ((byte(i) & 0xC0U) != 0x80) return 0;
    if (length < 3) return length;
    const unsigned second = byte(1);
    const bool isBad = (first == 0xE0 && second < 0xA0) || (first == 0xED && second > 0x9F) ||
                       (first == 0xF0 && second < 0x90) || (first == 0xF4 && second > 0x8F);
    return isBad ? 0 : length;
}

bool IsControl(std::string_view character) {
    const auto first = static_cast<unsigned char>(character[0]);
    if (character.size() == 1) return first < 0x20 || first == 0x7F;
    return first == 0xC2 && static_cast<unsigned char>(character[1]) < 0xA0;
}

}  // namespace

std::string Printable(std::string_view text) {
    std::string line;
    while (!text.empty()) {
        std::size_t length = CharacterLength(text);
        if (length > 0 && !IsControl(text.substr(0, length))) {
            line += text.substr(0, length);
        } else {
            length = length > 0 ? length : 1;
            for (const char letter : text.substr(0, length)) {
                std::array<char, 8> escape{};
                (void)std::snprintf(escape.data(), escape.size(), "\\x%02x",
                                    static_cast<unsigned char>(letter));
                line += escape.data();
            }
        }
        text.remove_prefix(length);
    }
    return line;
}

bool IsUtf8(std::string_view text) {
    while (!text.empty()) {
        const std::size_t length = CharacterLength(text);
        if (length == 0) return false;
        text.remove_prefix(length);
    }
    return true;
}
