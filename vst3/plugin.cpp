#include "vst3/plugin.h"

#include <algorithm>
#include <cstring>
#include <exception>

#include "base/wide_text.h"
#include "hosting/parameter_scale.h"
#include "pluginterfaces/base/ibstream.h"
#include "pluginterfaces/vst/ivstevents.h"
#include "pluginterfaces/vst/ivstmidicontrollers.h"
#include "pluginterfaces/vst/ivstparameterchanges.h"
#include "vst3/view.h"

using namespace Steinberg;       // NOLINT(google-build-using-namespace)
using namespace Steinberg::Vst;  // of the interface, which names everything without a prefix

namespace {

constexpr double echoSeconds = 0.5;

// An exception ends in a refusal.
template <typename Call>
tresult Guarded(Call call) noexcept {
    try {
        return call();
    } catch (const std::exception&) {
        return kInternalError;
    }
}

bool HasBus(MediaType type, BusDirection direction, int32 index) {
    return index == 0 && (type == kAudio || (type == kEvent && direction == kOutput));
}

bool IsParameter(ParamID id) {
    return id < parameterCount;
}
std::int32_t IndexOf(ParamID id) {
    return static_cast<std::int32_t>(id);
}

// False where the interface has no such event.
bool MakeEvent(std::uint32_t frame, std::uint32_t message, Event& event) {
    const auto channel = static_cast<int16>(message & 0xFU);
    const auto first = static_cast<int16>(message >> 8 & 0x7FU),
               second = static_cast<int16>(message >> 16 & 0x7FU);
    event = {};
    event.sampleOffset = static_cast<int32>(frame);
    switch (message & 0xF0U) {
        case 0x90:
            if (second > 0) {
                event.type = Event::kNoteOnEvent;
                event.noteOn = {channel, first, 0, static_cast<float>(second) / 127.0F, 0, -1};
                return true;
            }
            [[fallthrough]];
        case 0x80:
            event.type = Event::kNoteOffEvent;
            event.noteOff = {channel, first, 0, -1, 0};
            return true;
        case 0xB0:
        case 0xC0: {
            const bool isProgram = (message & 0xF0U) == 0xC0;
            event.type = Event::kLegacyMIDICCOutEvent;
            event.midiCCOut = {static_cast<uint8>(isProgram ? static_cast<int16>(kCtrlProgramChange) : first),
                               static_cast<int8>(channel), static_cast<int8>(isProgram ? first : second), 0};
            return true;
        }
        default: return false;
    }
}

}  // namespace

void CopyWide(TChar* field, const std::string& text) {
    constexpr std::size_t units = sizeof(String128) / sizeof(TChar) - 1;
    const std::u16string wide = WideText(text, units);
    wide.copy(field, units);
    field[wide.size()] = 0;
}

// The base that component and controller share is ambiguous by its type: the component's stands for both.
tresult Vst3Plugin::queryInterface(const TUID id, void** object) {
    const bool isBase = FUnknownPrivate::iidEqual(id, IPluginBase::iid);
    return Base::queryInterface(isBase ? IComponent::iid.toTUID() : id, object);
}

// --- component and controller ---

tresult Vst3Plugin::initialize(FUnknown* context) {
    if (session != nullptr) return kResultFalse;
    return Guarded([&] {
        ISessionListener& listener = *this;
        session = std::make_unique<SessionInstance>(listener);
        host = context;
        return kResultOk;
    });
}

tresult Vst3Plugin::terminate() {
    if (session != nullptr) session->CloseWindow();
    session.reset();
    handler = nullptr;
    host = nullptr;
    return kResultOk;
}

tresult Vst3Plugin::getControllerClassId(TUID) {
    return kNotImplemented;  // it is this one
}
tresult Vst3Plugin::setIoMode(IoMode) {
    return kNotImplemented;
}
tresult Vst3Plugin::getRoutingInfo(RoutingInfo&, RoutingInfo&) {
    return kNotImplemented;
}

int32 Vst3Plugin::getBusCount(MediaType type, BusDirection direction) {
    return HasBus(type, direction, 0) ? 1 : 0;
}

tresult Vst3Plugin::getBusInfo(MediaType type, BusDirection direction, int32 index, BusInfo& info) {
    if (!HasBus(type, direction, index)) return kInvalidArgument;
    info = {};
    info.mediaType = type;
    info.direction = direction;
    info.channelCount = type == kEvent ? channelCount : direction == kOutput && stereoOut ? 2 : 1;
    CopyWide(info.name, type == kEvent ? "MIDI" : direction == kInput ? "Input" : "Output");
    info.busType = kMain;
    info.flags = BusInfo::kDefaultActive;
    return kResultOk;
}

tresult Vst3Plugin::activateBus(MediaType type, BusDirection direction, int32 index, TBool) {
    return HasBus(type, direction, index) ? kResultOk : kInvalidArgument;
}

tresult Vst3Plugin::setActive(TBool state) {
    if (session == nullptr) return kNotInitialized;
    return Guarded([&] { return session->SetActive(state != 0), kResultOk; });
}

tresult Vst3Plugin::setState(IBStream* stream) {
    if (session == nullptr || stream == nullptr) return kResultFalse;
    return Guarded([&] {
        SessionInstance::State state;
        int32 read = 0, more = 0;
        char next = 0;
        if (stream->read(state.data(), state.size(), &read) != kResultOk ||
            static_cast<std::size_t>(read) != state.size())
            return kResultFalse;
        stream->read(&next, 1, &more);
        return more == 0 && session->Restore(state) ? kResultOk : kResultFalse;
    });
}

tresult Vst3Plugin::getState(IBStream* stream) {
    if (session == nullptr || stream == nullptr) return kResultFalse;
    SessionInstance::State state = session->Save();
    int32 written = 0;
    const tresult result = stream->write(state.data(), state.size(), &written);
    return static_cast<std::size_t>(written) == state.size() ? result : kResultFalse;
}

// --- processor ---

tresult Vst3Plugin::setBusArrangements(SpeakerArrangement* ins, int32 inCount, SpeakerArrangement* outs,
                                       int32 outCount) {
    if (inCount != 1 || outCount != 1 || ins == nullptr || outs == nullptr) return kResultFalse;
    const bool isStereo = outs[0] == SpeakerArr::kStereo;
    if (ins[0] != SpeakerArr::kMono || (outs[0] != SpeakerArr::kMono && !isStereo)) return kResultFalse;
    stereoOut = isStereo;
    return kResultTrue;
}

tresult Vst3Plugin::getBusArrangement(BusDirection direction, int32 index, SpeakerArrangement& arrangement) {
    if (index != 0) return kInvalidArgument;
    arrangement = direction == kOutput && stereoOut ? SpeakerArr::kStereo : SpeakerArr::kMono;
    return kResultOk;
}

tresult Vst3Plugin::canProcessSampleSize(int32 size) {
    return size == kSample32 || size == kSample64 ? kResultTrue : kResultFalse;
}

tresult Vst3Plugin::setupProcessing(ProcessSetup& setup) {
    if (session == nullptr) return kNotInitialized;
    if (session->IsActive() || canProcessSampleSize(setup.symbolicSampleSize) != kResultTrue)
        return kResultFalse;
    return Guarded([&] {
        rate = setup.sampleRate;
        session->SetRate(rate);
        return kResultOk;
    });
}

tresult Vst3Plugin::setProcessing(TBool) {
    return kResultOk;
}

tresult Vst3Plugin::process(ProcessData& data) {
    if (session == nullptr || !session->IsActive()) return kNotInitialized;
    return Guarded([&] {
        HostedInstance& hosted = session->Hosted();
        hosted.BeginRun(static_cast<std::uint32_t>(std::max(0, data.numSamples)));
        TakeParameters(data.inputParameterChanges);
        if (data.symbolicSampleSize == kSample64)
            Pass<Sample64>(data, &AudioBusBuffers::channelBuffers64);
        else
            Pass<Sample32>(data, &AudioBusBuffers::channelBuffers32);
        hosted.EndRun([&](std::uint32_t frame, std::uint32_t message) {
            Event event;
            return data.outputEvents == nullptr || !MakeEvent(frame, message, event) ||
                   data.outputEvents->addEvent(event) == kResultOk;
        });
        clock += data.numSamples;
        return kResultOk;
    });
}

// The first channel is heard, and all of the output's get it.
template <typename Sample>
void Vst3Plugin::Pass(ProcessData& data, Sample** AudioBusBuffers::*channels) {
    AudioBusBuffers none{};
    AudioBusBuffers& in = data.numInputs > 0 && data.inputs != nullptr ? data.inputs[0] : none;
    AudioBusBuffers unheard{};
    AudioBusBuffers& out = data.numOutputs > 0 && data.outputs != nullptr ? data.outputs[0] : unheard;
    const auto first = [&](const AudioBusBuffers& bus) -> Sample* {
        return bus.numChannels > 0 && bus.*channels != nullptr ? (bus.*channels)[0] : nullptr;
    };
    session->Hosted().Process<Sample>(first(in), first(out));
    for (int32 channel = 1; channel < out.numChannels && first(out) != nullptr; ++channel)
        if (Sample* const copy = (out.*channels)[channel]; copy != nullptr && data.numSamples > 0)
            std::copy_n(first(out), data.numSamples, copy);
    const bool isSilent = first(in) == nullptr || (in.silenceFlags & 1U) != 0;
    out.silenceFlags = isSilent ? (uint64{1} << out.numChannels) - 1 : 0;
}

// Of several points in a block the last counts: parameters take effect by blocks.
void Vst3Plugin::TakeParameters(IParameterChanges* changes) {
    edits.drain([this](std::int32_t index, float value) {
        echoes[static_cast<std::size_t>(index)].Await(value,
                                                      clock + static_cast<std::int64_t>(echoSeconds * rate));
    });
    const int32 count = changes != nullptr ? changes->getParameterCount() : 0;
    for (int32 i = 0; i < count; ++i) {
        IParamValueQueue* const queue = changes->getParameterData(i);
        int32 offset = 0;
        ParamValue value = 0;
        if (queue == nullptr || !IsParameter(queue->getParameterId()) || queue->getPointCount() < 1 ||
            queue->getPoint(queue->getPointCount() - 1, offset, value) != kResultOk)
            continue;
        const std::int32_t index = IndexOf(queue->getParameterId());
        const float unscaled = session->Unscaled(index, value);
        if (echoes[static_cast<std::size_t>(index)].Counts(unscaled, clock)) session->Set(index, unscaled);
    }
}

// --- parameters ---

tresult Vst3Plugin::setComponentState(IBStream*) {
    return kResultOk;  // the component has it already
}

tresult Vst3Plugin::getParameterInfo(int32 index, ParameterInfo& info) {
    if (index < 0 || index >= parameterCount || session == nullptr) return kInvalidArgument;
    return Guarded([&] {
        info = {};
        info.id = static_cast<ParamID>(index);
        CopyWide(info.title, ParameterName(index));
        info.stepCount = ParameterSteps(index);
        info.defaultNormalizedValue = session->Scaled(index, ParameterInitialValue(index));
        if (IsAutomatable(index)) info.flags |= ParameterInfo::kCanAutomate;
        if (FindParameter(index)->kind == ParameterKind::choice) info.flags |= ParameterInfo::kIsList;
        if (FindParameter(index)->kind == ParameterKind::page) info.flags |= ParameterInfo::kIsHidden;
        return kResultOk;
    });
}

tresult Vst3Plugin::getParamStringByValue(ParamID id, ParamValue value, String128 text) {
    if (!IsParameter(id) || session == nullptr) return kInvalidArgument;
    return Guarded([&] {
        CopyWide(text, ParameterDisplay(IndexOf(id), session->Unscaled(IndexOf(id), value)));
        return kResultOk;
    });
}

tresult Vst3Plugin::getParamValueByString(ParamID id, TChar* text, ParamValue& value) {
    if (!IsParameter(id) || session == nullptr || text == nullptr) return kInvalidArgument;
    return Guarded([&] {
        float read = 0;
        if (!ReadParameterText(IndexOf(id), WideCharToMultiByte(text), read)) return kResultFalse;
        value = session->Scaled(IndexOf(id), read);
        return kResultOk;
    });
}

ParamValue Vst3Plugin::normalizedParamToPlain(ParamID id, ParamValue value) {
    return value * PlainMaximum(IndexOf(id));
}
ParamValue Vst3Plugin::plainParamToNormalized(ParamID id, ParamValue value) {
    return value / PlainMaximum(IndexOf(id));
}

ParamValue Vst3Plugin::getParamNormalized(ParamID id) {
    if (!IsParameter(id) || session == nullptr) return 0;
    return session->Scaled(IndexOf(id), session->Parameter(IndexOf(id)));
}

tresult Vst3Plugin::setParamNormalized(ParamID id, ParamValue value) {
    if (!IsParameter(id) || session == nullptr) return kInvalidArgument;
    return Guarded(
        [&] { return session->Set(IndexOf(id), session->Unscaled(IndexOf(id), value)), kResultOk; });
}

tresult Vst3Plugin::setComponentHandler(IComponentHandler* newHandler) {
    handler = newHandler;
    return kResultOk;
}

IPlugView* Vst3Plugin::createView(FIDString name) {
    if (session == nullptr || name == nullptr || std::strcmp(name, ViewType::kEditor) != 0) return nullptr;
    return new (std::nothrow) Vst3View(*this);
}

void Vst3Plugin::ReportEdits() {
    session->Hosted().ChangesForHost().drain([this](std::int32_t index, float value) {
        if (handler == nullptr) return;
        const auto id = static_cast<ParamID>(index);
        handler->beginEdit(id);
        handler->performEdit(id, session->Scaled(index, value));
        handler->endEdit(id);
    });
}
