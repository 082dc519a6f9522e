#include "vst3/view.h"

#include <cstring>
#include <utility>

using namespace Steinberg;  // NOLINT(google-build-using-namespace)

tresult Vst3View::isPlatformTypeSupported(FIDString type) {
    return type != nullptr && std::strcmp(type, WindowClock::PlatformType()) == 0 ? kResultTrue
                                                                                  : kResultFalse;
}

tresult Vst3View::attached(void* parent, FIDString type) {
    SessionInstance* const session = plugin->Session();
    if (session == nullptr || session->WindowIsOpen() || isPlatformTypeSupported(type) != kResultTrue)
        return kResultFalse;
    auto started = WindowClock::Start(frame, [this] { Idle(); });
    if (!started) started = WindowClock::Start(plugin->Host(), [this] { Idle(); });
    if (!started ||
        !session->OpenWindow(static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(parent))))
        return kResultFalse;
    session->Object().sizeWindow = [this](std::int32_t width, std::int32_t height) {
        return Resize(width, height);
    };
    clock = std::move(started);
    return kResultOk;
}

tresult Vst3View::removed() {
    if (!clock) return kResultFalse;
    clock.reset();
    if (SessionInstance* const session = plugin->Session()) {
        session->CloseWindow();
        session->Object().sizeWindow = nullptr;
    }
    return kResultOk;
}

tresult Vst3View::getSize(ViewRect* size) {
    if (plugin->Session() == nullptr || size == nullptr) return kResultFalse;
    const ERect own = plugin->Session()->Object().EditorSize();
    *size = {0, 0, own.right - own.left, own.bottom - own.top};
    return kResultOk;
}

tresult Vst3View::setContentScaleFactor(ScaleFactor factor) {
    SessionInstance* const session = plugin->Session();
    return session != nullptr && session->SetScale(static_cast<double>(factor)) ? kResultTrue : kResultFalse;
}

bool Vst3View::Resize(std::int32_t width, std::int32_t height) {
    ViewRect size(0, 0, width, height);
    return frame != nullptr && frame->resizeView(this, &size) == kResultTrue;
}

tresult Vst3View::setFrame(IPlugFrame* newFrame) {
    frame = newFrame;
    return kResultOk;
}

void Vst3View::Idle() {
    if (!clock || plugin->Session() == nullptr) return;
    const IPtr<Vst3View> keep(this);  // a host that resizes its window may end this one in the middle
    plugin->Session()->IdleWindow();
    if (plugin->Session() != nullptr) plugin->ReportEdits();
}
