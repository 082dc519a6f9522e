#include "vst2/audio_effect_x.h"

#include <iterator>

#include "base/text.h"
#include "base/truncate.h"

std::int32_t AudioEffectX::canHostDo(const char* text) {
    // The interface takes a text that is not constant, and no host writes to it; it gets a copy all the same.
    std::string question(text);
    return static_cast<std::int32_t>(CallHost(audioMasterCanDo, 0, 0, question.data()));
}

std::string AudioEffectX::HostText(std::int32_t opcode) {
    char text[256];  // hosts write up to 64 bytes as agreed, and some up to 255
    std::fill(std::begin(text), std::end(text), '\0');
    CopyText(text, sizeof text, "[Unknown]");
    CallHost(opcode, 0, 0, text);
    text[sizeof text - 1] = '\0';
    return text;
}

std::string AudioEffectX::getHostVendorString() {
    return HostText(audioMasterGetVendorString);
}
std::string AudioEffectX::getHostProductString() {
    return HostText(audioMasterGetProductString);
}

std::int32_t AudioEffectX::getHostVendorVersion() {
    return static_cast<std::int32_t>(CallHost(audioMasterGetVendorVersion));
}

void AudioEffectX::wantEvents(std::int32_t filter) {
    CallHost(audioMasterWantMidi, 0, filter);
}

bool AudioEffectX::sendVstEventsToHost(VstEvents* events) {
    return CallHost(audioMasterProcessEvents, 0, 0, events) == 1;
}

bool AudioEffectX::sizeWindow(std::int32_t width, std::int32_t height) {
    return CallHost(audioMasterSizeWindow, width, height) != 0;
}

bool AudioEffectX::updateDisplay() {
    return CallHost(audioMasterUpdateDisplay) != 0;
}

std::intptr_t AudioEffectX::dispatcher(std::int32_t opcode, std::int32_t index, std::intptr_t value,
                                       void* ptr, float opt) {
    char* const text = static_cast<char*>(ptr);
    switch (opcode) {
        case effProcessEvents: return processEvents(static_cast<VstEvents*>(ptr));
        case effCanBeAutomated: return canParameterBeAutomated(index);
        case effString2Parameter: return string2parameter(index, text);
        case effConnectInput:
        case effConnectOutput: return 1;
        case effGetPlugCategory: return getPlugCategory();
        case effSetBlockSizeAndSampleRate:
            setBlockSize(static_cast<std::int32_t>(value));
            setSampleRate(opt);
            return 1;
        case effGetEffectName: return text != nullptr && getEffectName(text);
        case effGetVendorString: return text != nullptr && getVendorString(text);
        case effGetProductString: return text != nullptr && getProductString(text);
        case effGetVendorVersion: return getVendorVersion();
        case effCanDo: return text != nullptr ? canDo(text) : 0;
        case effKeysRequired: return 1;  // the published answer is reversed: 1 says that no keys are needed
        case effGetVstVersion: return getVstVersion();
        case effEditKeyDown:
        case effEditKeyUp: {
            if (editor == nullptr) return 0;
            const VstKeyCode key{index, static_cast<unsigned char>(value),
                                 static_cast<unsigned char>(TruncateToInt32(opt))};
            return opcode == effEditKeyDown ? editor->onKeyDown(key) : editor->onKeyUp(key);
        }
        case effSetEditKnobMode:
            return editor != nullptr && editor->setKnobMode(static_cast<std::int32_t>(value));
        case effSetTotalSampleToProcess: return value;
        case effSetProcessPrecision: return setProcessPrecision(static_cast<std::int32_t>(value));
        default: return AudioEffect::dispatcher(opcode, index, value, ptr, opt);
    }
}
