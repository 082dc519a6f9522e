#include "lv2/descriptors.h"

#include <cstring>

#include <lv2/worker/worker.h>

#include "lv2/instance.h"
#include "lv2/ui.h"
#include "lv2/uris.h"

namespace {

// --- the plug-in ---

Instance& Of(LV2_Handle handle) {
    return *static_cast<Instance*>(handle);
}

LV2_Handle Instantiate(const LV2_Descriptor*, double rate, const char*, const LV2_Feature* const* features) {
    return Instance::Make(rate, features);
}

LV2_Worker_Status Work(LV2_Handle handle, LV2_Worker_Respond_Function, LV2_Worker_Respond_Handle,
                       std::uint32_t, const void*) {
    Of(handle).Work();
    return LV2_WORKER_SUCCESS;
}

LV2_Worker_Status WorkResponse(LV2_Handle, std::uint32_t, const void*) {
    return LV2_WORKER_SUCCESS;
}

const void* ExtensionData(const char* uri) {
    static const LV2_Worker_Interface worker = {Work, WorkResponse, nullptr};
    return std::strcmp(uri, LV2_WORKER__interface) == 0 ? &worker : nullptr;
}

const LV2_Descriptor plugin = {
    pluginUri,
    Instantiate,
    [](LV2_Handle handle, std::uint32_t port, void* place) { Of(handle).Connect(port, place); },
    [](LV2_Handle handle) { Of(handle).Activate(); },
    [](LV2_Handle handle, std::uint32_t frames) { Of(handle).Run(frames); },
    [](LV2_Handle handle) { Of(handle).Deactivate(); },
    [](LV2_Handle handle) { Instance::Forget(handle); },
    ExtensionData,
};

// --- its window ---

Ui& WindowOf(LV2UI_Handle handle) {
    return *static_cast<Ui*>(handle);
}

// An exception ends in the answer that says "no".
template <typename Answer, typename Call>
Answer Guarded(Answer failed, Call call) noexcept {
    try {
        return call();
    } catch (...) {
        return failed;
    }
}

LV2UI_Handle MakeWindow(const LV2UI_Descriptor*, const char* itsPlugin, const char*,
                        LV2UI_Write_Function write, LV2UI_Controller controller, LV2UI_Widget* widget,
                        const LV2_Feature* const* features) {
    return Ui::Make(itsPlugin, write, controller, widget, features);
}

void PortEvent(LV2UI_Handle handle, std::uint32_t port, std::uint32_t size, std::uint32_t format,
               const void* buffer) {
    float value = 0;
    if (format != 0 || size != sizeof value || buffer == nullptr) return;  // no control value
    std::memcpy(&value, buffer, sizeof value);
    WindowOf(handle).PortEvent(port, value);
}

int Idle(LV2UI_Handle handle) {
    return Guarded(1, [=] { return WindowOf(handle).Idle() ? 0 : 1; });
}
int Show(LV2UI_Handle handle) {
    return Guarded(1, [=] { return WindowOf(handle).Open(0) ? 0 : 1; });
}
int Hide(LV2UI_Handle handle) {
    return Guarded(1, [=] { return WindowOf(handle).Close(), 0; });
}

const void* WindowExtensionData(const char* uri) {
    static const LV2UI_Idle_Interface idle = {Idle};
    static const LV2UI_Show_Interface show = {Show, Hide};
    if (std::strcmp(uri, LV2_UI__idleInterface) == 0) return &idle;
    if (std::strcmp(uri, LV2_UI__showInterface) == 0) return &show;
    return nullptr;
}

const LV2UI_Descriptor window = {
    windowUri, MakeWindow,          [](LV2UI_Handle handle) { delete &WindowOf(handle); },
    PortEvent, WindowExtensionData,
};

}  // namespace

const LV2_Descriptor* PluginDescriptor() {
    return &plugin;
}
const LV2UI_Descriptor* WindowDescriptor() {
    return &window;
}
