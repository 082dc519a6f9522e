#include "lv2/hosted_object.h"

#include <cstring>
#include <memory>
#include <stdexcept>

#include "base/truncate.h"
#include "editor/editor_factory.h"
#include "plugin/gui_plugin_ex.h"

thread_local HostedObject* HostedObject::underConstruction = nullptr;

HostedObject::HostedObject(double newRate, IObjectListener& newListener)
    : rate(TruncateToInt64(newRate)), listener(newListener) {
    struct Construction {
        explicit Construction(HostedObject* host) { underConstruction = host; }
        ~Construction() { underConstruction = nullptr; }
    };
    const Construction now(this);
    auto made = std::make_unique<CORVAguivstEx>(Answer, MakeEditor);
    if (editorCreationFailed || editor == nullptr) throw std::runtime_error("the editor cannot be made");
    made->samples.reserve(longestBlock);
    made->prepareEar();
    effect = made->getAeffect();
    effect->user = this;
    object = made.release();  // by the record from here on
    Call(effOpen);
    char question[] = "sendVstMidiEvent";  // as a host does that means to take the notes
    Call(effCanDo, 0, question);
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

HostedObject::~HostedObject() {
    Call(effClose);
}

std::unique_ptr<IPluginEditor> HostedObject::MakeEditor(CORVAguivst& made) {
    std::unique_ptr<IPluginEditor> its = MakeGuiEditor(made);
    underConstruction->editor = its.get();
    return its;
}

std::intptr_t HostedObject::Answer(AEffect* effect, std::int32_t opcode, std::int32_t index, std::intptr_t,
                                   void* ptr, float opt) {
    HostedObject* const self =
        effect->user != nullptr ? static_cast<HostedObject*>(effect->user) : underConstruction;
    switch (opcode) {
        case audioMasterVersion: return 2400;
        case audioMasterGetSampleRate: return self->rate;
        case audioMasterCanDo: return std::strcmp(static_cast<const char*>(ptr), "receiveVstMidiEvent") == 0;
        case audioMasterProcessEvents:
            self->listener.EventsSent(*static_cast<const VstEvents*>(ptr));
            return 1;
        case audioMasterAutomate: self->listener.ParameterEdited(index, opt); return 0;
        default: return 0;
    }
}

void HostedObject::Process(const float* in, float* out, std::uint32_t frames) {
    float* input = const_cast<float*>(in);  // the older interface has no const; the input is not written
    effect->processReplacing(effect, &input, &out, static_cast<std::int32_t>(frames));
}

ERect HostedObject::EditorSize() {
    ERect* size = nullptr;
    return Call(effEditGetRect, 0, &size) != 0 && size != nullptr ? *size : ERect();
}

bool HostedObject::OpenEditor(std::uint32_t parent) {
    // A window's number is what hosts hand over as a pointer. NOLINTNEXTLINE(performance-no-int-to-ptr)
    return Call(effEditOpen, 0, reinterpret_cast<void*>(static_cast<std::uintptr_t>(parent))) != 0;
}
