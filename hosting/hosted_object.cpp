#include "hosting/hosted_object.h"

#include <stdexcept>

#include "base/float_environment.h"
#include "base/truncate.h"
#include "editor/editor_factory.h"
#include "editor/window_size.h"
#include "parameters/parameters.h"
#include "plugin/gui_plugin_ex.h"

namespace {

// The editor of the object under construction on this thread.
thread_local IPluginEditor* madeEditor = nullptr;

std::unique_ptr<IPluginEditor> MakeEditor(CORVAguivst& object) {
    std::unique_ptr<IPluginEditor> made = MakeGuiEditor(object);
    madeEditor = made.get();
    return made;
}

}  // namespace

HostedObject::HostedObject(double newRate, IObjectListener& newListener)
    : PluginHost(TruncateToInt32(newRate), {}), listener(newListener) {
    const FloatEnvironment hosts;
    Construct([this](audioMasterCallback callback) {
        madeEditor = nullptr;  // one that failed may have left its own
        auto made = std::make_unique<CORVAguivstEx>(callback, MakeEditor);
        editor = madeEditor;
        if (editorCreationFailed || editor == nullptr) throw std::runtime_error("the editor cannot be made");
        made->samples.reserve(longestBlock);
        made->prepareEar();
        object = made.release();  // the record owns it from here on
        return object->getAeffect();
    });
    Open();
}

HostedObject::~HostedObject() {
    Dispatch(effClose);
}

void HostedObject::SetRefined(bool refined) {
    object->setEar(refined ? Ear::refinedLive : Ear::classic);
}
void HostedObject::SetThreshold(float logits) {
    object->setEarThreshold(logits);
}
void HostedObject::SetInputLevel(float dB) {
    object->setInputLevel(dB);
}

void HostedObject::UsePreferredHearing() {
    object->usePreferredHearing();
}

// The equalizer's gains go with the old rate; the bars that were moved keep their values, and bring theirs
// back.
void HostedObject::SetRate(double newRate) {
    rate = TruncateToInt32(newRate);
    Dispatch(effSetSampleRate, 0, 0, nullptr, static_cast<float>(newRate));
    for (std::int32_t bar = paramFirstBar; bar <= paramLastBar; ++bar)
        if (const float value = Parameter(bar); value != ParameterInitialValue(bar)) SetParameter(bar, value);
}

void HostedObject::Process(const float* in, float* out, std::uint32_t frames) {
    float* input = const_cast<float*>(in);  // the older interface has no const; the input is not written
    effect->processReplacing(effect, &input, &out, static_cast<std::int32_t>(frames));
}

void HostedObject::Process(const double* in, double* out, std::uint32_t frames) {
    double* input = const_cast<double*>(in);
    effect->processDoubleReplacing(effect, &input, &out, static_cast<std::int32_t>(frames));
}

ERect HostedObject::EditorSize() {
    ERect* size = nullptr;
    return Dispatch(effEditGetRect, 0, 0, &size) != 0 && size != nullptr ? *size : ERect();
}

bool HostedObject::SetScale(double scale) {
    return scale > 0 && editor->setScale(static_cast<double>(PreferredWindowSize(scale)) / ownWindowSize);
}

bool HostedObject::OpenEditor(std::uint32_t parent) {
    // A window's number is what hosts hand over as a pointer. NOLINTNEXTLINE(performance-no-int-to-ptr)
    return Dispatch(effEditOpen, 0, 0, reinterpret_cast<void*>(static_cast<std::uintptr_t>(parent))) != 0;
}
