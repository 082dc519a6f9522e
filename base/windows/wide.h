#pragma once
#include <string>
#include <string_view>

#include "base/wide_text.h"

// The system's texts are UTF-16 in wchar_t; ours are UTF-8. [any]
inline std::wstring Wide(std::string_view utf8) {
    const std::u16string text = WideText(utf8, utf8.size());  // never more units than bytes
    return {text.begin(), text.end()};
}
inline std::string Narrow(std::wstring_view wide) {
    return WideCharToMultiByte(std::u16string(wide.begin(), wide.end()));
}
