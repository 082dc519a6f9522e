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
    clock = std::move(started);
    return kResultOk;
}

tresult Vst3View::removed() {
    if (!clock) return kResultFalse;
    clock.reset();
    if (plugin->Session() != nullptr) plugin->Session()->CloseWindow();
    return kResultOk;
}

tresult Vst3View::getSize(ViewRect* size) {
    if (plugin->Session() == nullptr || size == nullptr) return kResultFalse;
    const ERect own = plugin->Session()->Object().EditorSize();
    *size = {0, 0, own.right - own.left, own.bottom - own.top};
    return kResultOk;
}

tresult Vst3View::setFrame(IPlugFrame* newFrame) {
    frame = newFrame;
    return kResultOk;
}

void Vst3View::Idle() {
    if (!clock || plugin->Session() == nullptr) return;
    plugin->Session()->IdleWindow();
    plugin->ReportEdits();
}
