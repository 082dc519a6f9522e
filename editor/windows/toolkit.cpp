#include "editor/toolkit.h"

#include "base/lasting.h"
#include "desktop/windows/module.h"
#include "editor/fonts.h"
#include "editor/windows/memory_fonts.h"
#include "vst2/records.h"
#include "vstgui/lib/vstguiinit.h"

namespace {

// Outlasts the rest: a host may close its last editor while the process already ends.
struct Toolkit {
    std::recursive_mutex lock;
    int sessions = 0;
};

Toolkit& TheToolkit() {
    static Lasting<Toolkit> toolkit;
    return toolkit.value;
}

}  // namespace

std::recursive_mutex& ToolkitLock() {
    return TheToolkit().lock;
}

std::unique_ptr<ToolkitSession> ToolkitSession::Begin() {
    Toolkit& toolkit = TheToolkit();
    if (toolkit.sessions == 0) {
        UseOwnFonts();
        VSTGUI::init(ThisModule());
    }
    ++toolkit.sessions;
    return std::unique_ptr<ToolkitSession>(new ToolkitSession);
}

ToolkitSession::~ToolkitSession() {
    if (--TheToolkit().sessions == 0) End();
}

void ToolkitSession::End() {
    ForgetOwnFonts();
    VSTGUI::exit();
}

void ToolkitSession::Pump() {}

// The toolkit's timers have no window. Other messages stay for the host's loop.
void ToolkitSession::PumpTimers() {
    const auto threadsOwn = reinterpret_cast<HWND>(std::intptr_t{-1});
    MSG message;
    while (PeekMessageW(&message, threadsOwn, WM_TIMER, WM_TIMER, PM_REMOVE)) DispatchMessageW(&message);
}

bool ToolkitSession::ConnectionLost() {
    return false;
}
