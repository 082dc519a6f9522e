#include "tools/host/hosted_plugin.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace {

constexpr std::intptr_t hostVersion = 1300;  // 1.3.0.0
constexpr const char* productName = "orva-host";

}  // namespace

HostedPlugin::HostedPlugin(const PluginModule& module, std::int32_t newRate, std::string newVendor,
                           EventSink newSink)
    : PluginHost(newRate, {std::move(newVendor), productName, hostVersion}), sink(std::move(newSink)) {
    const std::string name = module.Path().string();
    Construct([&](audioMasterCallback callback) {
        AEffect* const made = module.Open(callback);
        if (made == nullptr) throw std::runtime_error(name + ": the plug-in refuses to open");
        if (made->magic != kEffectMagic || made->dispatcher == nullptr)
            throw std::runtime_error(name + ": no VST 2 plug-in");
        return made;
    });
    if (effect->processReplacing == nullptr || effect->setParameter == nullptr ||
        effect->getParameter == nullptr || effect->numInputs < 0 || effect->numOutputs < 0) {
        Dispatch(effClose);
        throw std::runtime_error(name + ": the plug-in lacks a call that this host needs");
    }
    Open();
    Dispatch(effVendorSpecific, vendorCall, vendorNoteDates, nullptr, 1);  // where they began
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
    // The interface takes pointers to what is not constant; a plug-in that is not asked to work in place only
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

void HostedPlugin::SetWindowScale(double scale) const {
    Dispatch(effVendorSpecific, vendorCall, vendorWindowScale, nullptr, static_cast<float>(scale));
}

void HostedPlugin::SetWindowDark() const {
    Dispatch(effVendorSpecific, vendorCall, vendorWindowDark, nullptr, 1);
}

void HostedPlugin::EventsSent(const VstEvents& events) {
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
