#include "vst3/window_clock.h"

#include <windows.h>

namespace {

// A window that only messages see, so that the timer's number can be its clock.
class TimerClock final : public WindowClock {
public:
    explicit TimerClock(std::function<void()> newTick)
        : tick(std::move(newTick)),
          window(CreateWindowExW(0, L"STATIC", nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr,
                                 nullptr)) {
        SetTimer(window, reinterpret_cast<UINT_PTR>(this), period, Tick);
    }
    ~TimerClock() override { DestroyWindow(window); }

private:
    static void CALLBACK Tick(HWND, UINT, UINT_PTR clock, DWORD) {
        // NOLINTNEXTLINE(performance-no-int-to-ptr)
        const auto tick = reinterpret_cast<TimerClock*>(clock)->tick;  // a copy: a tick may end the clock
        tick();
    }

    const std::function<void()> tick;
    const HWND window;
};

}  // namespace

Steinberg::FIDString WindowClock::PlatformType() {
    return Steinberg::kPlatformTypeHWND;
}

std::unique_ptr<WindowClock> WindowClock::Start(Steinberg::FUnknown*, std::function<void()> tick) {
    return std::make_unique<TimerClock>(std::move(tick));
}
