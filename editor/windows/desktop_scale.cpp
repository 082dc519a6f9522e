#include <windows.h>

#include "editor/window_size.h"

namespace {

template <class Function>
Function* UserFunction(const char* name) {
    return reinterpret_cast<Function*>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"user32.dll"), name)));
}

// Each monitor has its own since Windows 10: the one counts where the user works in the host. A program that
// leaves scaling to the system is shown 96 dots per inch.
UINT Dpi() {
    if (const HWND window = GetActiveWindow())
        if (auto* const ofWindow = UserFunction<UINT WINAPI(HWND)>("GetDpiForWindow"))
            return ofWindow(window);
    if (auto* const ofSystem = UserFunction<UINT WINAPI()>("GetDpiForSystem")) return ofSystem();
    const HDC screen = GetDC(nullptr);
    if (screen == nullptr) return USER_DEFAULT_SCREEN_DPI;
    const int dpi = GetDeviceCaps(screen, LOGPIXELSX);
    ReleaseDC(nullptr, screen);
    return static_cast<UINT>(dpi);
}

}  // namespace

double DesktopScale() {
    return static_cast<double>(Dpi()) / USER_DEFAULT_SCREEN_DPI;
}
