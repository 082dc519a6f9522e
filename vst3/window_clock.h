#pragma once
#include <functional>
#include <memory>

#include "pluginterfaces/gui/iplugview.h"

// The regular calls that an open window lives by, on the thread of the host's windows: on Linux from a timer
// in the host's run loop, on Windows from a timer of the system's.
//
// Threads: [ui].
class WindowClock {
public:
    static constexpr unsigned period = 20;  // ms; the mouse is followed at this pace

    static Steinberg::FIDString PlatformType();  // of a host's window on this system
    // None where `host`, a frame or the host itself, offers nothing to run it. It may be null.
    static std::unique_ptr<WindowClock> Start(Steinberg::FUnknown* host, std::function<void()> tick);
    WindowClock() = default;
    virtual ~WindowClock() = default;  // no call comes after it
    WindowClock(const WindowClock&) = delete;
    WindowClock& operator=(const WindowClock&) = delete;
};
