#pragma once
#include <cstddef>
#include <string_view>

// Copies `text` into `field` of `size` bytes: as much as fits, always with its terminator, never a cut
// UTF-8 sequence. A null field or a size of 0 is left alone. Threads: [any].
inline void CopyText(char* field, std::size_t size, std::string_view text) {
    if (field == nullptr || size == 0) return;
    std::size_t length = text.size() < size ? text.size() : size - 1;
    if (length < text.size())
        while (length > 0 && (static_cast<unsigned char>(text[length]) & 0xC0U) == 0x80U) --length;
    text.copy(field, length);
    field[length] = '\0';
}
