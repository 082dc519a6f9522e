#include "hosting/plugin_host.h"

#include <array>
#include <cstring>

#include "base/text.h"

namespace {

constexpr std::intptr_t hostVstVersion = 2400;

std::intptr_t AnswerText(void* field, std::size_t size, const std::string& text) {
    if (text.empty()) return 0;
    CopyText(static_cast<char*>(field), size, text);
    return 1;
}

}  // namespace

thread_local PluginHost* PluginHost::underConstruction = nullptr;

void PluginHost::Open() {
    Dispatch(effOpen);
    CanDo("sendVstEvents");
    CanDo("sendVstMidiEvent");
}

void PluginHost::ParameterEdited(std::int32_t, float) {}

std::string PluginHost::Text(std::int32_t opcode, std::int32_t index) const {
    std::array<char, 256> text{};  // plug-ins write more than the interface grants them
    Dispatch(opcode, index, 0, text.data());
    text.back() = '\0';
    return text.data();
}

std::int32_t PluginHost::CanDo(std::string capability) const {
    return static_cast<std::int32_t>(Dispatch(effCanDo, 0, 0, capability.data()));
}

std::intptr_t PluginHost::Callback(AEffect* effect, std::int32_t opcode, std::int32_t index,
                                   std::intptr_t value, void* ptr, float opt) {
    PluginHost* const host = effect != nullptr && effect->resvd1 != 0
                                 // It was put there as a number. NOLINTNEXTLINE(performance-no-int-to-ptr)
                                 ? reinterpret_cast<PluginHost*>(effect->resvd1)
                                 : underConstruction;
    if (host != nullptr) return host->Answer(opcode, index, value, ptr, opt);
    return opcode == audioMasterVersion ? hostVstVersion : 0;
}

std::intptr_t PluginHost::Answer(std::int32_t opcode, std::int32_t index, std::intptr_t value, void* ptr,
                                 float opt) {
    switch (opcode) {
        case audioMasterVersion: return hostVstVersion;
        case audioMasterGetVendorVersion: return identity.version;
        case audioMasterGetSampleRate: return rate;
        case audioMasterGetVendorString: return AnswerText(ptr, kVstMaxVendorStrLen, identity.vendor);
        case audioMasterGetProductString: return AnswerText(ptr, kVstMaxProductStrLen, identity.product);
        case audioMasterCanDo: {
            const char* const capability = static_cast<const char*>(ptr);
            return capability != nullptr && (std::strcmp(capability, "receiveVstEvents") == 0 ||
                                             std::strcmp(capability, "receiveVstMidiEvent") == 0);
        }
        case audioMasterProcessEvents:
            if (ptr != nullptr) EventsSent(*static_cast<const VstEvents*>(ptr));
            return 1;
        case audioMasterSizeWindow: {
            const auto ask = sizeWindow;  // a copy: a host may close the window from inside its answer
            return ask && ask(index, static_cast<std::int32_t>(value));
        }
        case audioMasterAutomate: ParameterEdited(index, opt); return 1;
        case audioMasterUpdateDisplay:
        case audioMasterWantMidi: return 1;
        default: return 0;
    }
}
