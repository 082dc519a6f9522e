#include "editor/linux/run_loop.h"

#include <algorithm>
#include <chrono>

namespace {

std::uint64_t Milliseconds() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}

}  // namespace

bool EditorRunLoop::registerEventHandler(int /*descriptor*/, VSTGUI::X11::IEventHandler* handler) {
    handlers.push_back(handler);
    return true;
}

bool EditorRunLoop::unregisterEventHandler(VSTGUI::X11::IEventHandler* handler) {
    return std::erase(handlers, handler) > 0;
}

bool EditorRunLoop::registerTimer(std::uint64_t interval, VSTGUI::X11::ITimerHandler* handler) {
    timers.push_back({handler, interval, Milliseconds() + interval});
    return true;
}

bool EditorRunLoop::unregisterTimer(VSTGUI::X11::ITimerHandler* handler) {
    return std::erase_if(timers, [handler](const Timer& each) { return each.handler == handler; }) > 0;
}

void EditorRunLoop::pump() {
    if (pumping) return;
    pumping = true;
    const auto nowHandlers = handlers;
    for (VSTGUI::X11::IEventHandler* handler : nowHandlers)
        if (std::find(handlers.begin(), handlers.end(), handler) != handlers.end()) handler->onEvent();

    const std::uint64_t now = Milliseconds();
    const auto nowTimers = timers;
    for (const Timer& each : nowTimers) {
        const auto still = std::find_if(timers.begin(), timers.end(), [&each](const Timer& other) {
            return other.handler == each.handler;
        });
        if (still == timers.end() || still->due > now) continue;
        still->due = now + still->interval;
        each.handler->onTimer();
    }
    pumping = false;
}
