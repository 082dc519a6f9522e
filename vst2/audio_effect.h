#pragma once
#include <atomic>
#include <cstddef>
#include <memory>

#include "base/relaxed.h"
#include "vst2/aeff_editor.h"
#include "vst2/records.h"

// The plug-in's side of the published interface, version 1: one AEffect record, the path from its C
// functions to virtual operations, and the calls back to the host.
//
// What comes from the host is not believed: null pointers, unknown opcodes and indices out of range are
// answered with 0, and no exception leaves towards the host. Texts that go to the host are at most
// textSize bytes with their terminator. The host's floating-point control word is as it was after each call.
//
// Ownership: the host owns the object through its record, by way of effClose; the object owns its editor.
// Threads: the host's choice. Process calls [audio]; editor calls [ui]; all others [any].
class AudioEffect {
public:
    static constexpr std::size_t textSize = 64;  // bytes that hosts in use reserve for names and displays

    AudioEffect(audioMasterCallback host, std::int32_t numPrograms, std::int32_t numParams);
    virtual ~AudioEffect();
    AudioEffect(const AudioEffect&) = delete;
    AudioEffect& operator=(const AudioEffect&) = delete;

    // The record to hand to the host, which stands for nothing before the first call: a host that calls back
    // while the object is being built is answered with 0.
    AEffect* getAeffect() {
        if (record.object == nullptr) record.object = this;
        return &record;
    }

    // One call of the host's, by opcode. Overridden by later versions of the interface, which hand down what
    // they do not know.
    virtual std::intptr_t dispatcher(std::int32_t opcode, std::int32_t index, std::intptr_t value, void* ptr,
                                     float opt);

    virtual void open() {}
    virtual void close() {}
    virtual void suspend() {}
    virtual void resume() {}
    virtual void setSampleRate(float rate) { sampleRate = rate; }       // Hz
    virtual void setBlockSize(std::int32_t size) { blockSize = size; }  // samples

    // inputs and outputs: one pointer per channel, each to `frames` samples. Any pointer may be null.
    virtual void process(float** inputs, float** outputs, std::int32_t frames) = 0;  // adds to the outputs
    virtual void processReplacing(float** inputs, float** outputs, std::int32_t frames) = 0;
    virtual void processDoubleReplacing(double** inputs, double** outputs, std::int32_t frames) = 0;

    virtual void setParameter(std::int32_t index, float value);
    virtual float getParameter(std::int32_t index);
    virtual void setParameterAutomated(std::int32_t index, float value);  // sets, and notifies the host

    virtual std::int32_t getProgram() { return program; }
    virtual void setProgram(std::int32_t number) { program = number; }
    // Texts: `name` from the host ends at its terminator or after 32 bytes; `text` to the host holds textSize
    // bytes, kVstMaxProgNameLen for a program's name.
    virtual void setProgramName(const char* name);
    virtual void getProgramName(char* name);
    virtual void getParameterLabel(std::int32_t index, char* text);
    virtual void getParameterDisplay(std::int32_t index, char* text);
    virtual void getParameterName(std::int32_t index, char* text);

    virtual std::int32_t getChunk(void** data, bool isPreset);
    virtual std::int32_t setChunk(void* data, std::int32_t bytes, bool isPreset);

    float getSampleRate() const { return sampleRate; }
    std::int32_t getMasterVersion();  // of the interface that the host speaks; 1 for the oldest

protected:
    void setUniqueID(std::int32_t id) { record.uniqueID = id; }
    void setNumInputs(std::int32_t count) { record.numInputs = count; }
    void setNumOutputs(std::int32_t count) { record.numOutputs = count; }
    void canProcessReplacing(bool can) { SetFlag(effFlagsCanReplacing, can); }
    void canDoubleReplacing(bool can) { SetFlag(effFlagsCanDoubleReplacing, can); }
    void canMono(bool can) { SetFlag(effFlagsCanMono, can); }
    void programsAreChunks(bool are) { SetFlag(effFlagsProgramChunks, are); }
    void setEditor(AEffEditor* newEditor);  // not owned here; its presence is declared to the host

    // 0 without asking where eight calls to the host are under way already, as from one that calls back
    // without end.
    std::intptr_t CallHost(std::int32_t opcode, std::int32_t index = 0, std::intptr_t value = 0,
                           void* ptr = nullptr, float opt = 0);

    AEffEditor* editor = nullptr;

private:
    void SetFlag(std::int32_t flag, bool on);

    audioMasterCallback audioMaster;    // may be null
    std::atomic<int> callsUnderWay{0};  // to the host, on all threads
    AEffect record;
    Relaxed<float> sampleRate;        // Hz; asked of the host once, at construction
    Relaxed<std::int32_t> blockSize;  // samples
    Relaxed<std::int32_t> program;
};
