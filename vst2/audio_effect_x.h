#pragma once
#include <string>

#include "vst2/audio_effect.h"

// The plug-in's side of the published interface up to version 2.4. Operations that a plug-in does not
// override keep the interface's defaults: mostly "no".
//
// Threads and texts: as AudioEffect.
class AudioEffectX : public AudioEffect {
public:
    using AudioEffect::AudioEffect;

    std::intptr_t dispatcher(std::int32_t opcode, std::int32_t index, std::intptr_t value, void* ptr,
                             float opt) override;

    // What the plug-in says of itself. `text` has the size that the interface grants each.
    virtual bool getEffectName(char* text) { return *text = '\0', false; }     // kVstMaxEffectNameLen
    virtual bool getVendorString(char* text) { return *text = '\0', false; }   // kVstMaxVendorStrLen
    virtual bool getProductString(char* text) { return *text = '\0', false; }  // kVstMaxProductStrLen
    virtual std::int32_t getVendorVersion() { return 0; }
    virtual VstPlugCategory getPlugCategory() { return kPlugCategUnknown; }
    virtual std::int32_t getVstVersion() { return 2400; }
    virtual std::int32_t canDo(const char*) { return 0; }  // 1 yes, 0 don't know, -1 no
    virtual bool setProcessPrecision(std::int32_t) { return false; }

    virtual bool canParameterBeAutomated(std::int32_t) { return true; }
    virtual bool string2parameter(std::int32_t, const char*) { return false; }  // text may be null
    virtual std::int32_t processEvents(VstEvents*) { return 0; }

    // What the plug-in asks of its host.
    std::int32_t canHostDo(const char* text);
    std::string getHostVendorString();   // "[Unknown]" where the host fills in nothing
    std::string getHostProductString();  // the same
    std::int32_t getHostVendorVersion();
    void wantEvents(std::int32_t filter = 1);
    bool sendVstEventsToHost(VstEvents* events);
    bool sizeWindow(std::int32_t width, std::int32_t height);  // false: it keeps the size that it has
    bool updateDisplay();                                      // the host shall read parameters again

private:
    std::string HostText(std::int32_t opcode);
};
