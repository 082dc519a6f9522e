#include "desktop/user_store.h"

#include <windows.h>

#include "base/windows/wide.h"

namespace {

// The version in the path gives each version settings of its own.
constexpr const char* basePath = "Software\\ORVA Labs\\ORVA Audio To MIDI VST 1.30\\";

std::wstring PathOf(std::string_view name) {
    return Wide(basePath + std::string(name));
}

}  // namespace

// The text is the key's default value.
bool WriteSetting(std::string_view name, std::string_view text) {
    HKEY key = nullptr;
    if (RegCreateKeyExW(HKEY_CURRENT_USER, PathOf(name).c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key,
                        nullptr) != ERROR_SUCCESS)
        return false;
    const std::wstring wide = Wide(text);
    const auto bytes = static_cast<DWORD>(wide.size() * sizeof(wchar_t));
    const LSTATUS result =
        RegSetValueExW(key, nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(wide.data()), bytes);
    RegCloseKey(key);
    return result == ERROR_SUCCESS;
}

std::string ReadSetting(std::string_view name) {
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, PathOf(name).c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return {};
    wchar_t wide[longestStoredText + 1] =
        {};  // a text of so many bytes has no more units; its end may be stored too
    DWORD bytes = sizeof wide, type = 0;
    const LSTATUS result =
        RegQueryValueExW(key, nullptr, nullptr, &type, reinterpret_cast<BYTE*>(wide), &bytes);
    RegCloseKey(key);
    if (result != ERROR_SUCCESS || type != REG_SZ) return {};
    return Narrow({wide, bytes / sizeof(wchar_t)});
}
