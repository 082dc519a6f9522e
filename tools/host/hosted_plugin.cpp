#include "tools/host/hosted_plugin.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <stdexcept>
#include <utility>

#include "base/text.h"

namespace {

constexpr std::intptr_t hostVstVersion = 2400;
constexpr std::intptr_t hostVersion = 1300;  // 1.3.0.0
constexpr const char* productName = "orva-host";

// The instance whose plug-in is being constructed on this thread: until the entry has returned there is no
// record yet that could lead a callback to its instance.
thread_local HostedPlugin* constructing = nullptr;

}  // namespace

HostedPlugin::HostedPlugin(const PluginModule& module, std::int32_t newRate, std::string newVendor,
                           EventSink newSink)
    : rate(newRate), vendor(std::move(newVendor)), sink(std::move(newSink)) {
    constructing = this;
    effect = module.Open(&HostedPlugin::HostCallback);
    constructing = nullptr;
    const std::string name = module.Path().string();
    if (effect == nullptr) throw std::runtime_error(name + ": the plug-in refuses to open");
    if (effect->magic != kEffectMagic || effect->dispatcher == nullptr)
        throw std::runtime_error(name + ": no VST 2 plug-in");
    effect->resvd1 = std::bit_cast<std::intptr_t>(this);
    if (effect->processReplacing == nullptr || effect->setParameter == nullptr ||
        effect->getParameter == nullptr || effect->numInputs < 0 || effect->numOutputs < 0) {
        Dispatch(effClose);
        throw std::runtime_error(name + ": the plug-in lacks a call that this host needs");
    }
    Dispatch(effOpen);
    // A host that takes MIDI asks; the plug-in's window warns where none did.
    CanDo("sendVstEvents");
    CanDo("sendVstMidiEvent");
}

HostedPlugin::~HostedPlugin() {
    if (runs) Stop();  // an error on the way: what sounds on a device is ended all the same
    Dispatch(effClose);
}

void HostedPlugin::Start(std::int32_t blockSize) {
    const auto size = static_cast<std::size_t>(blockSize);
    output.assign(size * static_cast<std::size_t>(effect->numOutputs), 0.0F);
    inputPointers.assign(static_cast<std::size_t>(effect->numInputs), nullptr);
    outputPointers.clear();
    for (std::size_t at = 0; at < output.size(); at += size) outputPointers.push_back(output.data() + at);

    Announce(blockSize);
}

void HostedPlugin::Announce(std::int32_t blockSize) {
    Dispatch(effSetSampleRate, 0, 0, nullptr, static_cast<float>(rate));
    Dispatch(effSetBlockSize, 0, blockSize);
    Dispatch(effMainsChanged, 0, 1);
    runs = true;
}

void HostedPlugin::Change(std::int32_t newRate, std::int32_t blockSize) {
    Stop();
    rate = newRate;
    Announce(blockSize);
}

void HostedPlugin::Process(const float* samples, std::int32_t count, float* out) {
    // The interface takes pointers to what is not constant; a plug-in that is not told to work in place only
    // reads.
    std::fill(inputPointers.begin(), inputPointers.end(), const_cast<float*>(samples));
    effect->processReplacing(effect, inputPointers.data(), outputPointers.data(), count);
    if (out != nullptr && !outputPointers.empty()) std::copy_n(outputPointers.front(), count, out);
    delivered = delivered + count;
}

void HostedPlugin::Stop() {
    Dispatch(effMainsChanged, 0, 0);
    runs = false;
}

void HostedPlugin::SetEar(const EarSettings& settings) const {
    const bool taken =
        Dispatch(effVendorSpecific, vendorCall, vendorEar, nullptr, static_cast<float>(settings.ear)) == 1;
    if (!taken && settings.isRequired) throw std::runtime_error("the plug-in has no choice of ears");
    if (!taken) return;
    Dispatch(effVendorSpecific, vendorCall, vendorThreshold, nullptr, settings.threshold);
    SetLevel(settings.level);
}

void HostedPlugin::SetLevel(float dB) const {
    Dispatch(effVendorSpecific, vendorCall, vendorInputLevel, nullptr, dB);
}

std::string HostedPlugin::Text(std::int32_t opcode, std::int32_t index) const {
    std::array<char, 256> text{};  // plug-ins write more than the interface grants them
    Dispatch(opcode, index, 0, text.data());
    text.back() = '\0';
    return text.data();
}

std::int32_t HostedPlugin::CanDo(std::string capability) const {
    return static_cast<std::int32_t>(Dispatch(effCanDo, 0, 0, capability.data()));
}

std::intptr_t HostedPlugin::Dispatch(std::int32_t opcode, std::int32_t index, std::intptr_t value, void* ptr,
                                     float opt) const {
    return effect->dispatcher(effect, opcode, index, value, ptr, opt);
}

// --- what the plug-in asks ---

std::intptr_t HostedPlugin::HostCallback(AEffect* effect, std::int32_t opcode, std::int32_t, std::intptr_t,
                                         void* ptr, float) {
    HostedPlugin* const host = effect != nullptr && effect->resvd1 != 0
                                   ? std::bit_cast<HostedPlugin*>(effect->resvd1)
                                   : constructing;
    if (host != nullptr) return host->Answer(opcode, ptr);
    return opcode == audioMasterVersion ? hostVstVersion : 0;
}

std::intptr_t HostedPlugin::Answer(std::int32_t opcode, void* ptr) {
    char* const text = static_cast<char*>(ptr);
    switch (opcode) {
        case audioMasterVersion: return hostVstVersion;
        case audioMasterGetVendorVersion: return hostVersion;
        case audioMasterGetSampleRate: return rate;
        case audioMasterGetVendorString: CopyText(text, kVstMaxVendorStrLen, vendor); return 1;
        case audioMasterGetProductString: CopyText(text, kVstMaxProductStrLen, productName); return 1;
        case audioMasterCanDo:
            return text != nullptr && (std::strcmp(text, "receiveVstEvents") == 0 ||
                                       std::strcmp(text, "receiveVstMidiEvent") == 0);
        case audioMasterProcessEvents:
            if (ptr != nullptr) Receive(*static_cast<const VstEvents*>(ptr));
            return 1;
        // Nothing is drawn or recorded here that such a change would have to reach.
        case audioMasterAutomate:
        case audioMasterUpdateDisplay:
        case audioMasterWantMidi: return 1;
        default: return 0;
    }
}

void HostedPlugin::Receive(const VstEvents& events) {
    if (!sink) return;
    VstEvent* const* const list = events.events;  // really numEvents of them
    for (std::int32_t i = 0; i < events.numEvents; ++i) {
        if (list[i] == nullptr || list[i]->type != kVstMidiType) continue;
        VstMidiEvent midi;
        std::memcpy(static_cast<void*>(&midi), list[i], sizeof midi);
        TimedEvent event;
        // Dated back to where the sound began, which for the first notes may lie before the audio.
        event.sample = std::max<std::int64_t>(0, delivered + midi.deltaFrames);
        std::transform(midi.midiData, midi.midiData + 3, event.bytes.begin(),
                       [](char byte) { return static_cast<std::uint8_t>(byte); });
        if (asksForLevels && (event.bytes[0] & 0xF0) == 0x80)
            Dispatch(effVendorSpecific, vendorCall, vendorPeakLevel, &event.level, event.bytes[1]);
        sink(event);
    }
}
