#include "tools/host/printable.h"

#include <array>
#include <cstdio>

#include "base/wide_text.h"

std::string Printable(std::string_view text) {
    std::string line;
    while (!text.empty()) {
        const DecodedCharacter front = DecodeFront(text);
        const std::string_view bytes = text.substr(0, front.length);
        text.remove_prefix(front.length);
        const bool isControl = front.character < 0x20 || (front.character >= 0x7F && front.character < 0xA0);
        if (front.IsLegal() && !isControl) {
            line += bytes;
            continue;
        }
        for (const char byte : bytes) {
            std::array<char, 8> escape{};
            (void)std::snprintf(escape.data(), escape.size(), "\\x%02x", static_cast<unsigned char>(byte));
            line += escape.data();
        }
    }
    return line;
}

bool IsUtf8(std::string_view text) {
    while (!text.empty()) {
        const DecodedCharacter front = DecodeFront(text);
        if (!front.IsLegal()) return false;
        text.remove_prefix(front.length);
    }
    return true;
}
