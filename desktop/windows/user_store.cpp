#include "desktop/user_store.h"

#include <windows.h>

#include "base/windows/wide.h"

namespace {

constexpr std::size_t maxNameLength = 200;  // bytes; a key's name has 255 units at most
constexpr std::size_t maxTextLength = 255;  // bytes that are read

// The version in the path gives each version settings of its own.
constexpr const char* basePath = "Software\\ORVA Labs\\ORVA Audio To MIDI VST 1.30\\";

bool IsName(std::string_view subKey) {
    return !subKey.empty() && subKey.size() <= maxNameLength && subKey.front() != '.' &&
           subKey.find_first_of(std::string_view("/\\\0", 3)) == std::string_view::npos;
}

std::wstring PathOf(std::string_view subKey) {
    return Wide(basePath + std::string(subKey));
}

}  // namespace

// The text is the key's default value.
bool writeRegistryString(std::string_view subKey, std::string_view text) try {
    HKEY key = nullptr;
    if (!IsName(subKey) || RegCreateKeyExW(HKEY_CURRENT_USER, PathOf(subKey).c_str(), 0, nullptr, 0,
                                           KEY_ALL_ACCESS, nullptr, &key, nullptr) != ERROR_SUCCESS)
        return false;
    const std::wstring wide = Wide(text);
    const auto bytes = static_cast<DWORD>(wide.size() * sizeof(wchar_t));
    const LSTATUS result =
        RegSetValueExW(key, nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(wide.data()), bytes);
    RegCloseKey(key);
    return result == ERROR_SUCCESS;
} catch (const std::exception&) {  // no memory
    return false;
}

std::string readRegistryString(std::string_view subKey) try {
    HKEY key = nullptr;
    if (!IsName(subKey) ||
        RegOpenKeyExW(HKEY_CURRENT_USER, PathOf(subKey).c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS)
        return {};
    wchar_t wide[maxTextLength + 1] =
        {};  // a text of so many bytes has no more units; its end may be stored too
    DWORD bytes = sizeof wide, type = 0;
    const LSTATUS result =
        RegQueryValueExW(key, nullptr, nullptr, &type, reinterpret_cast<BYTE*>(wide), &bytes);
    RegCloseKey(key);
    if (result != ERROR_SUCCESS || type != REG_SZ) return {};
    std::string text = Narrow({wide, bytes / sizeof(wchar_t)});
    return text.size() <= maxTextLength ? text : std::string();
} catch (const std::exception&) {
    return {};
}
