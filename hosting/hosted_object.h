#pragma once
#include <cstdint>
#include <memory>

#include "hosting/plugin_host.h"
#include "plugin/editor_interface.h"

class CORVAguivstEx;

// Is notified by the plug-in object.
class IObjectListener {
public:
    virtual void EventsSent(const VstEvents& events) = 0;               // [any]
    virtual void ParameterEdited(std::int32_t index, float value) = 0;  // [ui] in the window; applied already

protected:
    ~IObjectListener() = default;
};

// The plug-in object with its editor, linked and not loaded, in the host that it believes to be in: one of
// version 2400 that takes MIDI.
//
// Threads: as the object's own. Errors: construction throws when there is no memory or no editor.
class HostedObject final : public PluginHost {
public:
    // Blocks up to this many frames are processed without an allocation.
    static constexpr std::uint32_t longestBlock = 16384;

    HostedObject(double newRate, IObjectListener& newListener);
    ~HostedObject();

    void Resume() { Dispatch(effMainsChanged, 0, 1); }
    void Suspend() { Dispatch(effMainsChanged, 0, 0); }
    void SetRate(double newRate);                                     // Hz; not beside Process
    void Process(const float* in, float* out, std::uint32_t frames);  // [audio]; pointers may be null
    void Process(const double* in, double* out, std::uint32_t frames);
    // How it hears. [audio], and nobody waits: the refined ear is there from construction on.
    void SetRefined(bool refined);
    void SetThreshold(float logits);
    void SetInputLevel(float dB);
    void UsePreferredHearing();  // of the user, from now on; before the first block, and not [audio]

    // The editor. [ui]
    ERect EditorSize();
    // What the host says of its display: the size of the next window, unless the user has chosen one. False
    // while the window is open.
    bool SetScale(double scale);
    bool OpenEditor(std::uint32_t parent);  // a window's number
    void CloseEditor() { Dispatch(effEditClose); }
    void IdleEditor() { Dispatch(effEditIdle); }
    void ShowInEditor(std::int32_t index, float value) { editor->parameterChanged(index, value); }  // [any]

private:
    void EventsSent(const VstEvents& events) override { listener.EventsSent(events); }
    void ParameterEdited(std::int32_t index, float value) override { listener.ParameterEdited(index, value); }

    IObjectListener& listener;
    IPluginEditor* editor = nullptr;  // the object's
    CORVAguivstEx* object = nullptr;  // the record's
};
