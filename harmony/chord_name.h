#pragma once
#include <cstddef>
#include <string_view>

#include "base/text.h"

// The name of a chord as it is shown: a short text in place, so that it is made, kept and copied without
// allocation. The longest name that a form can give takes 25 bytes; past 31 a text is cut.
//
// Threads: a plain value. Invariant: all bytes behind the text are 0.
class TChordName {
public:
    static constexpr std::size_t capacity = 32;  // bytes, the terminator included

    TChordName() = default;
    explicit TChordName(std::string_view name) { Append(name); }

    void Append(std::string_view more) { CopyText(text + view().size(), capacity - view().size(), more); }
    bool empty() const { return text[0] == '\0'; }
    const char* c_str() const { return text; }
    std::string_view view() const { return text; }

    friend bool operator==(const TChordName&, const TChordName&) = default;

private:
    char text[capacity] = {};
};
