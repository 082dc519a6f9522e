#pragma once
#include <cstdint>
#include <vector>

#include "vst2/records.h"
#include "vstgui/lib/platform/platform_x11.h"
#include "vstgui/lib/vstguibase.h"

// The toolkit's event loop, pumped from the host's idle call: file descriptors with their handlers, and
// timers. One per module, since the toolkit keeps one connection to the display.
//
// Threads: [ui], under the toolkit's lock (editor/toolkit.h).
class EditorRunLoop : public VSTGUI::X11::IRunLoop, public VSTGUI::AtomicReferenceCounted {
public:
    bool registerEventHandler(int descriptor, VSTGUI::X11::IEventHandler* handler) override;
    bool unregisterEventHandler(VSTGUI::X11::IEventHandler* handler) override;
    bool registerTimer(std::uint64_t interval, VSTGUI::X11::ITimerHandler* handler) override;  // ms
    bool unregisterTimer(VSTGUI::X11::ITimerHandler* handler) override;

    // One round: every handler, whether its descriptor is ready or not (the connection queues events ahead of
    // its socket), then each timer that is due. Never waits. A handler may register and unregister as it
    // likes; a pump from within a pump does nothing.
    void pump();

private:
    struct Timer {
        VSTGUI::X11::ITimerHandler* handler;
        std::uint64_t interval;  // ms
        std::uint64_t due;       // ms, on the monotonic clock
    };

    std::vector<VSTGUI::X11::IEventHandler*> handlers;
    std::vector<Timer> timers;
    bool pumping = false;
};
