#include "vst3/view.h"

#include <cstring>

using namespace Steinberg;  // NOLINT(google-build-using-namespace)

namespace {

constexpr Linux::TimerInterval period = 20;  // ms; the mouse is followed at this pace

}  // namespace

tresult Vst3View::isPlatformTypeSupported(FIDString type) {
    return type != nullptr && std::strcmp(type, kPlatformTypeX11EmbedWindowID) == 0 ? kResultTrue
                                                                                    : kResultFalse;
}

tresult Vst3View::attached(void* parent, FIDString type) {
    SessionInstance* const session = plugin->Session();
    if (session == nullptr || session->WindowIsOpen() || isPlatformTypeSupported(type) != kResultTrue)
        return kResultFalse;
    FUnknownPtr<Linux::IRunLoop> offered(frame);
    if (offered == nullptr) return kResultFalse;
    if (!session->OpenWindow(static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(parent))))
        return kResultFalse;
    runLoop = offered;
    runLoop->registerTimer(this, period);
    return kResultOk;
}

tresult Vst3View::removed() {
    if (runLoop == nullptr) return kResultFalse;
    runLoop->unregisterTimer(this);
    runLoop = nullptr;
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

void Vst3View::onTimer() {
    if (runLoop == nullptr || plugin->Session() == nullptr) return;
    plugin->Session()->IdleWindow();
    plugin->ReportEdits();
}
