#include "vst2/audio_effect.h"

#include <cmath>
#include <utility>

#include "base/float_environment.h"

namespace {

constexpr float usualRate = 44100;            // Hz, where the host names none
constexpr float slowestRate = 100;            // Hz; below it a frame of 10 ms has no sample
constexpr float fastestRate = 2147483648.0F;  // what a 32-bit count of Hz cannot hold any more
constexpr std::int32_t usualBlock = 1024;     // samples

// A host that calls back whenever it is called would never come to an end. Nobody who means it nests so deep:
// an automated value that ends a note, of which the host sets another value, which the display shows. Counted
// over all threads, since storage of a thread's own may be allocated at its first use, on an audio thread.
constexpr int mostCalls = 8;

AudioEffect* EffectOf(AEffect* record) {
    return record != nullptr ? static_cast<AudioEffect*>(record->object) : nullptr;
}

// One call from the host: its control word is put back afterwards, and no exception leaves.
template <typename Call>
auto Guarded(AEffect* record, Call call) noexcept -> decltype(call(std::declval<AudioEffect&>())) {
    using Result = decltype(call(std::declval<AudioEffect&>()));
    AudioEffect* const effect = EffectOf(record);
    if (effect == nullptr) return Result();
    const FloatEnvironment hosts;
    try {
        return call(*effect);
    } catch (...) {
        return Result();
    }
}

std::intptr_t Dispatch(AEffect* record, std::int32_t opcode, std::int32_t index, std::intptr_t value,
                       void* ptr, float opt) {
    return Guarded(record, [=](AudioEffect& effect) -> std::intptr_t {
        if (opcode != effClose) return effect.dispatcher(opcode, index, value, ptr, opt);
        const std::unique_ptr<AudioEffect> last(&effect);
        last->dispatcher(opcode, index, value, ptr, opt);
        record->object = nullptr;  // a callback on the way out finds no half of an object
        return 1;
    });
}

void Process(AEffect* record, float** inputs, float** outputs, std::int32_t frames) {
    Guarded(record, [=](AudioEffect& effect) { effect.process(inputs, outputs, frames); });
}

void ProcessReplacing(AEffect* record, float** inputs, float** outputs, std::int32_t frames) {
    Guarded(record, [=](AudioEffect& effect) { effect.processReplacing(inputs, outputs, frames); });
}

void ProcessDoubleReplacing(AEffect* record, double** inputs, double** outputs, std::int32_t frames) {
    Guarded(record, [=](AudioEffect& effect) { effect.processDoubleReplacing(inputs, outputs, frames); });
}

void SetParameter(AEffect* record, std::int32_t index, float value) {
    Guarded(record, [=](AudioEffect& effect) { effect.setParameter(index, value); });
}

float GetParameter(AEffect* record, std::int32_t index) {
    return Guarded(record, [=](AudioEffect& effect) { return effect.getParameter(index); });
}

}  // namespace

AudioEffect::AudioEffect(audioMasterCallback host, std::int32_t numPrograms, std::int32_t numParams)
    : audioMaster(host), blockSize(usualBlock) {
    record.dispatcher = Dispatch;
    record.process = Process;
    record.setParameter = SetParameter;
    record.getParameter = GetParameter;
    record.numPrograms = numPrograms;
    record.numParams = numParams;
    record.version = 1;
    record.processReplacing = ProcessReplacing;
    record.processDoubleReplacing = ProcessDoubleReplacing;
    const auto answer = static_cast<float>(CallHost(audioMasterGetSampleRate));
    sampleRate = answer >= slowestRate && answer < fastestRate ? answer : usualRate;
}

AudioEffect::~AudioEffect() {
    record.object = nullptr;
}

std::intptr_t AudioEffect::CallHost(std::int32_t opcode, std::int32_t index, std::intptr_t value, void* ptr,
                                    float opt) {
    if (audioMaster == nullptr) return 0;
    struct Call {
        explicit Call(std::atomic<int>& all) : count(all), number(++count) {}
        ~Call() { --count; }
        Call(const Call&) = delete;
        Call& operator=(const Call&) = delete;
        std::atomic<int>& count;
        const int number;
    } const call(callsUnderWay);
    if (call.number > mostCalls) return 0;
    return audioMaster(&record, opcode, index, value, ptr, opt);
}

void AudioEffect::SetFlag(std::int32_t flag, bool on) {
    record.flags = on ? record.flags | flag : record.flags & ~flag;
}

void AudioEffect::setEditor(AEffEditor* newEditor) {
    editor = newEditor;
    SetFlag(effFlagsHasEditor, editor != nullptr);
}

std::int32_t AudioEffect::getMasterVersion() {
    const auto version = static_cast<std::int32_t>(CallHost(audioMasterVersion));
    return version != 0 ? version : 1;
}

void AudioEffect::setParameter(std::int32_t, float) {}
float AudioEffect::getParameter(std::int32_t) {
    return 0;
}

void AudioEffect::setParameterAutomated(std::int32_t index, float value) {
    setParameter(index, value);
    CallHost(audioMasterAutomate, index, 0, nullptr, value);
}

void AudioEffect::setProgramName(const char*) {}
void AudioEffect::getProgramName(char* name) {
    *name = '\0';
}
void AudioEffect::getParameterLabel(std::int32_t, char* text) {
    *text = '\0';
}
void AudioEffect::getParameterDisplay(std::int32_t, char* text) {
    *text = '\0';
}
void AudioEffect::getParameterName(std::int32_t, char* text) {
    *text = '\0';
}
std::int32_t AudioEffect::getChunk(void**, bool) {
    return 0;
}
std::int32_t AudioEffect::setChunk(void*, std::int32_t, bool) {
    return 0;
}

std::intptr_t AudioEffect::dispatcher(std::int32_t opcode, std::int32_t index, std::intptr_t value, void* ptr,
                                      float opt) {
    char* const text = static_cast<char*>(ptr);
    switch (opcode) {
        case effOpen: open(); break;
        case effClose: close(); break;
        case effSetProgram:
            if (value >= 0 && value < record.numPrograms) setProgram(static_cast<std::int32_t>(value));
            break;
        case effGetProgram: return getProgram();
        case effSetProgramName:
            if (text != nullptr) setProgramName(text);
            break;
        case effGetProgramName:
            if (text != nullptr) getProgramName(text);
            break;
        case effGetParamLabel:
            if (text != nullptr) getParameterLabel(index, text);
            break;
        case effGetParamDisplay:
            if (text != nullptr) getParameterDisplay(index, text);
            break;
        case effGetParamName:
            if (text != nullptr) getParameterName(index, text);
            break;
        case effSetSampleRate: setSampleRate(opt); break;
        case effSetBlockSize: setBlockSize(static_cast<std::int32_t>(value)); break;
        case effMainsChanged: value != 0 ? resume() : suspend(); break;
        case effEditGetRect:
            return editor != nullptr && ptr != nullptr && editor->getRect(static_cast<ERect**>(ptr));
        case effEditOpen: return editor != nullptr && editor->open(ptr);
        case effEditClose:
            if (editor != nullptr) editor->close();
            break;
        case effEditIdle:
            if (editor != nullptr) editor->idle();
            break;
        case effIdentify: return FourCharacters('N', 'v', 'E', 'f');
        case effGetChunk: return ptr != nullptr ? getChunk(static_cast<void**>(ptr), index != 0) : 0;
        case effSetChunk: return setChunk(ptr, static_cast<std::int32_t>(value), index != 0);
        default: break;
    }
    return 0;
}
