#pragma once
#include <filesystem>
#include <string>

// Texts are UTF-8 everywhere; the paths of some systems are not. [any]
inline std::filesystem::path FilePath(const std::string& utf8) {
    return std::u8string(utf8.begin(), utf8.end());
}
inline std::string Utf8(const std::filesystem::path& path) {
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}
