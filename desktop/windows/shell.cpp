#include "desktop/shell.h"

#include <windows.h>

#include <htmlhelp.h>
#include <shellapi.h>

#include <cstdint>

#include "base/windows/wide.h"

namespace {

bool Open(const std::string& target) {
    const HINSTANCE answer =
        ShellExecuteW(nullptr, L"open", Wide(target).c_str(), nullptr, nullptr, SW_SHOWNORMAL);
    return reinterpret_cast<std::intptr_t>(answer) > 32;  // below are the codes of errors
}

// By the help viewer, which not every system has; it stays loaded with the windows that it opens.
bool ShowInHelpViewer(const std::wstring& file) {
    using Show = HWND(WINAPI*)(HWND, LPCWSTR, UINT, DWORD_PTR);
    const HMODULE viewer = LoadLibraryW(L"hhctrl.ocx");
    if (viewer == nullptr) return false;
    const auto show = reinterpret_cast<Show>(reinterpret_cast<void*>(GetProcAddress(viewer, "HtmlHelpW")));
    return show != nullptr && show(GetDesktopWindow(), file.c_str(), HH_DISPLAY_TOPIC, 0) != nullptr;
}

}  // namespace

bool ShowWebPage(const std::string& address) {
    return !address.empty() && Open(address);
}

bool ComposeMail(const std::string& address) {
    return !address.empty() && Open("mailto:" + address);
}

bool ShowHelpFile(const std::string& path) {
    const std::wstring file = Wide(path);
    if (GetFileAttributesW(file.c_str()) == INVALID_FILE_ATTRIBUTES) return false;
    return (path.ends_with(".chm") && ShowInHelpViewer(file)) || Open(path);
}
