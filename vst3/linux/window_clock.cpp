#include "vst3/window_clock.h"

#include "pluginterfaces/base/funknownimpl.h"

using namespace Steinberg;  // NOLINT(google-build-using-namespace)

namespace {

class Handler final : public U::Implements<U::Directly<Linux::ITimerHandler>> {
public:
    explicit Handler(std::function<void()> newTick) : tick(std::move(newTick)) {}
    void PLUGIN_API onTimer() override {
        if (const auto now = tick) now();  // a copy: a tick may end the clock
    }
    void Stop() { tick = nullptr; }  // a host may still hold it

private:
    std::function<void()> tick;
};

class RunLoopClock final : public WindowClock {
public:
    RunLoopClock(const IPtr<Linux::IRunLoop>& hosts, std::function<void()> tick)
        : runLoop(hosts), handler(owned(new Handler(std::move(tick)))) {
        runLoop->registerTimer(handler, period);
    }
    ~RunLoopClock() override {
        runLoop->unregisterTimer(handler);
        handler->Stop();
    }

private:
    const IPtr<Linux::IRunLoop> runLoop;
    const IPtr<Handler> handler;
};

}  // namespace

FIDString WindowClock::PlatformType() {
    return kPlatformTypeX11EmbedWindowID;
}

std::unique_ptr<WindowClock> WindowClock::Start(FUnknown* host, std::function<void()> tick) {
    const FUnknownPtr<Linux::IRunLoop> offered(host);
    if (offered == nullptr) return nullptr;
    return std::make_unique<RunLoopClock>(offered, std::move(tick));
}
