#pragma once
#include "pluginterfaces/base/funknownimpl.h"
#include "pluginterfaces/gui/iplugview.h"
#include "pluginterfaces/gui/iplugviewcontentscalesupport.h"
#include "vst3/plugin.h"
#include "vst3/window_clock.h"

// The window of an instance, inside one of the host's: it is the editor of the plug-in object. Its size
// is the user's choice or fits the host's scale; the host's frame does not drag it.
//
// Threads: [ui].
class Vst3View final
    : public Steinberg::U::Implements<
          Steinberg::U::Directly<Steinberg::IPlugView, Steinberg::IPlugViewContentScaleSupport>> {
public:
    using tresult = Steinberg::tresult;

    explicit Vst3View(Vst3Plugin& newPlugin) : plugin(&newPlugin) {}
    ~Vst3View() override { removed(); }

    tresult PLUGIN_API isPlatformTypeSupported(Steinberg::FIDString type) override;
    tresult PLUGIN_API attached(void* parent, Steinberg::FIDString type) override;
    tresult PLUGIN_API removed() override;
    tresult PLUGIN_API onWheel(float) override { return Steinberg::kResultFalse; }
    tresult PLUGIN_API onKeyDown(Steinberg::char16, Steinberg::int16, Steinberg::int16) override {
        return Steinberg::kResultFalse;  // keys reach the editor through its window
    }
    tresult PLUGIN_API onKeyUp(Steinberg::char16, Steinberg::int16, Steinberg::int16) override {
        return Steinberg::kResultFalse;
    }
    tresult PLUGIN_API getSize(Steinberg::ViewRect* size) override;
    tresult PLUGIN_API onSize(Steinberg::ViewRect*) override { return Steinberg::kResultOk; }
    tresult PLUGIN_API onFocus(Steinberg::TBool) override { return Steinberg::kResultOk; }
    tresult PLUGIN_API setFrame(Steinberg::IPlugFrame* newFrame) override;
    tresult PLUGIN_API canResize() override { return Steinberg::kResultFalse; }
    tresult PLUGIN_API checkSizeConstraint(Steinberg::ViewRect* size) override { return getSize(size); }
    tresult PLUGIN_API setContentScaleFactor(ScaleFactor factor) override;  // refused while attached

private:
    void Idle();
    bool Resize(std::int32_t width, std::int32_t height);

    const Steinberg::IPtr<Vst3Plugin> plugin;
    Steinberg::IPlugFrame* frame = nullptr;  // the host's, between two calls of setFrame
    std::unique_ptr<WindowClock> clock;      // while attached
};
