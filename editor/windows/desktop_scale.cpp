#include <windows.h>

#include "editor/window_size.h"

// A program that leaves scaling to the system is shown 96 dots per inch.
double DesktopScale() {
    constexpr double usualDpi = 96;
    const HDC screen = GetDC(nullptr);
    if (screen == nullptr) return 1;
    const int dpi = GetDeviceCaps(screen, LOGPIXELSX);
    ReleaseDC(nullptr, screen);
    return dpi / usualDpi;
}
