#pragma once
#include <cstdint>
#include <memory>

#include "plugin/editor_interface.h"
#include "vst2/records.h"

class CORVAguivstEx;

// Whom the plug-in object tells.
class IObjectListener {
public:
    virtual void EventsSent(const VstEvents& events) = 0;               // [any]
    virtual void ParameterEdited(std::int32_t index, float value) = 0;  // [ui] in the window; applied already

protected:
    ~IObjectListener() = default;
};

// The plug-in object with its editor, and the host that it believes to be in: one of version 2400 that runs
// at a fixed rate and takes MIDI.
//
// Threads: as the object's own. Errors: construction throws when there is no memory or no editor.
class HostedObject {
public:
    // Blocks up to this many frames are processed without an allocation.
    static constexpr std::uint32_t longestBlock = 16384;

    HostedObject(double newRate, IObjectListener& newListener);
    ~HostedObject();
    HostedObject(const HostedObject&) = delete;
    HostedObject& operator=(const HostedObject&) = delete;

    void Resume() { Call(effMainsChanged, 1); }
    void Suspend() { Call(effMainsChanged, 0); }
    void Process(const float* in, float* out, std::uint32_t frames);  // [audio]; pointers may be null
    void Set(std::int32_t index, float value) { effect->setParameter(effect, index, value); }
    // How it hears. [audio], and nobody waits: the refined ear is there from construction on.
    void SetRefined(bool refined);
    void SetThreshold(float logits);
    void SetInputLevel(float dB);
    float Get(std::int32_t index) const { return effect->getParameter(effect, index); }

    // The editor. [ui]
    ERect EditorSize();
    bool OpenEditor(std::uint32_t parent);  // a window's number
    void CloseEditor() { Call(effEditClose); }
    void IdleEditor() { Call(effEditIdle); }
    void ShowInEditor(std::int32_t index, float value) { editor->parameterChanged(index, value); }  // [any]

private:
    static std::intptr_t Answer(AEffect* effect, std::int32_t opcode, std::int32_t index, std::intptr_t value,
                                void* ptr, float opt);
    static std::unique_ptr<IPluginEditor> MakeEditor(CORVAguivst& made);
    std::intptr_t Call(std::int32_t opcode, std::intptr_t value = 0, void* ptr = nullptr) {
        return effect->dispatcher(effect, opcode, 0, value, ptr, 0);
    }

    // Its callback carries no word of its own, and the record no pointer, before the object is whole.
    static thread_local HostedObject* underConstruction;

    const std::intptr_t rate;  // Hz
    IObjectListener& listener;
    IPluginEditor* editor = nullptr;  // the object's
    CORVAguivstEx* object = nullptr;  // the record's
    AEffect* effect = nullptr;        // owned; ended by effClose
};
