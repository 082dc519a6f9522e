#pragma once
#include <atomic>
#include <cstdint>
#include <vector>

#include "base/mutex.h"
#include "base/relaxed.h"
#include "delivery/note_recorder.h"
#include "delivery/vst_midi_out.h"
#include "engine/real_time_detector.h"
#include "listening/refined_detector.h"
#include "plugin/block_gate.h"
#include "plugin/hearing.h"
#include "plugin/input_meter.h"
#include "plugin/note_dates.h"
#include "vst2/audio_effect_x.h"
#include "vst2/vendor_call.h"

// The base of the plug-in object: the detector, the recorder, the output to the host, the three parameters
// that steer the recognition, and the path of a block of audio. The audio itself passes through untouched.
//
// The chain above it adds one concern a level: CORVAguivst the further outputs and parameters 3 to 95,
// CORVAguivstEx the registration role on the block path. Only the most derived class reaches the detector.
//
// Silence stops detection by itself, and the next block with signal starts it again:
//
//   stopped   meaning                                             left by
//   true      at rest: after construction, suspend, silence       a block with signal, by startDetection
//   false     running: notes flow                                 a silent block, or suspend
//
// Threads: the process calls [audio]; all else [any]. The object takes no lock: the detector stands behind a
// gate. A block that comes during a suspend or a change of rate passes unanalysed. Nothing is allocated on
// the block path once `samples` has reached the host's block size.
class CORVA_vst : public AudioEffectX, public IVSTMIDIEffect {
public:
    CORVA_vst(audioMasterCallback host, std::int32_t numParams);
    ~CORVA_vst() override;

    // The chain's own operations.
    virtual void processSamples(const short* block, std::size_t count);  // [audio] hands a block onwards
    virtual void startDetection();                                       // [audio] leaves the stopped state
    virtual void stopDetection();                                        // [audio] enters it
    virtual void getParameterValueDisplay(float value, std::int32_t index, char* text);  // textSize bytes
    virtual bool registrationStatus() { return false; }
    virtual bool submitRegistration(const char* /*name*/, const char* /*code*/) { return false; }
    virtual void logHostInfo();  // writes what the host says of itself to the log
    virtual void
    requestHostEvents();  // requests of an older host, at the first block, that events are wanted

    // The host's calls.
    void open() override;
    void close() override {}
    void suspend() override;
    void resume() override;
    void setSampleRate(float rate) override;
    void process(float** inputs, float** outputs, std::int32_t frames) override;
    void processReplacing(float** inputs, float** outputs, std::int32_t frames) override;
    void processDoubleReplacing(double** inputs, double** outputs, std::int32_t frames) override;

    void setParameter(std::int32_t index, float value) override;
    float getParameter(std::int32_t index) override;
    void getParameterName(std::int32_t index, char* text) override;
    void getParameterLabel(std::int32_t index, char* text) override;
    void getParameterDisplay(std::int32_t index, char* text) override;
    bool canParameterBeAutomated(std::int32_t) override { return true; }
    bool string2parameter(std::int32_t index, const char* text) override;
    void setProgramName(const char* name) override;
    void getProgramName(char* name) override;

    bool getEffectName(char* text) override;
    bool getVendorString(char* text) override;
    bool getProductString(char* text) override;
    std::int32_t getVendorVersion() override { return 5632; }
    VstPlugCategory getPlugCategory() override { return kPlugCategAnalysis; }
    std::int32_t getVstVersion() override { return 2400; }
    std::int32_t canDo(const char* text) override;
    bool setProcessPrecision(std::int32_t) override { return true; }

    std::intptr_t dispatcher(std::int32_t opcode, std::int32_t index, std::intptr_t value, void* ptr,
                             float opt) override;

    // How the plug-in hears; without these calls, as it always did. [any], and none waits: a block in flight
    // ends with the settings that it began with. Notes that sound end with a change of ear. The refined ear
    // is made at its first choice, or before by prepareEar, so that the choice allocates nothing.
    void prepareEar();
    void setEar(Ear ear);
    void setEarThreshold(float logits);
    void setInputLevel(float dB);
    void setHearing(const Hearing& wanted);  // all three
    void setNoteDates(NoteDates wanted);     // from the next event on
    NoteDates noteDates() const { return chosenDates; }
    Hearing hearing() const { return {ear, earThreshold, inputLevel}; }

    // For the output to the host.
    std::uint64_t GetTotalSamples() const override { return totalSamples; }
    bool HostIsAbleton() const override { return hostIsAbletonCopy; }
    bool RaisesEarlyDates() const override {
        return chosenDates == NoteDates::automatic ? hostDropsEarlyDates
                                                   : chosenDates == NoteDates::neverEarly;
    }
    void SendEvents(VstEvents& events) override { sendVstEventsToHost(&events); }

    TRealTimeTS107 detector;               // behind the gate
    TNoteRecorder noteRecorder;            // its own lock
    TVSTMIDIOut* vstMidiOut = nullptr;     // owned by the recorder; always attached
    Relaxed<bool> outputToHost = true;     // parameter 91: whether vstMidiOut runs
    std::vector<short> samples;            // the block being delivered; behind the gate
    Relaxed<std::uint64_t> totalSamples;   // delivered since construction; never reset
    Relaxed<std::uint64_t> silentSamples;  // in the present run of silent blocks
    Relaxed<float> baseParameters[3];      // raw values of parameters 0, 1, 2
    Relaxed<bool> firstBlock = true;       // no block has been processed yet
    float levelAverage = 0;                // smoothed logarithmic peak of the levels; the editor's, [ui]
    Relaxed<bool> stopped = true;
    InputMeter inputMeter;                   // of the host's samples, ahead of inputGain
    Relaxed<float> inputGain = 1.0F;         // factor; exactly 1 leaves the samples to the plain conversion
    Relaxed<bool> hostAskedMidiOut = false;  // the host has asked canDo("sendVstMidiEvent")
    bool hostIsAbletonCopy = false;          // taken at construction
    bool hostDropsEarlyDates = false;        // the same
    Relaxed<NoteDates> chosenDates = NoteDates::automatic;

protected:
    // The detector works at the present rate; without it, audio passes and nothing is recognised.
    bool CanDetect() const { return detects; }
    // The calling thread is in the middle of a block: it came here by way of a host that calls back.
    bool InsideBlock() const { return gate.IsMine(); }
    // What suspend does, behind the gate, so that no block sees it half done.
    virtual void suspendSteps() { StopSteps(); }
    void StopSteps();
    // The refined ear decides late: it hears on through this much silence, so that the last notes end by
    // themselves.
    bool HearsThroughSilence() const;

private:
    enum Request : unsigned { requestStop = 1, requestRate = 2, requestEar = 4 };

    template <typename Sample>
    void FeedBlock(const Sample* in, std::size_t count);
    template <typename Sample>
    void PassThrough(Sample** inputs, Sample** outputs, std::int32_t frames, bool accumulate);
    void deliverBlock();
    void ResetDetector();
    void Ask(Request request);
    void Leave(Request request);
    void ChangeEar();
    bool ServeRequests();
    void Serve(unsigned requests);

    BlockGate gate;
    std::atomic<unsigned> requests{0};     // what other threads want done to the detector
    std::atomic<bool> leftToBlock{false};  // who asked has given up waiting: the block in flight serves
    Relaxed<bool> detects = true;          // written behind the gate
    bool stoppedWithin = false;            // behind the gate: what is left of the block is not to be heard
    std::atomic<TRefinedDetector*> refined{nullptr};  // owned; made at the first choice, and kept
    INoteDetector* heard = &detector;                 // behind the gate: what the recorder follows
    Relaxed<Ear> ear = Ear::classic;                  // as chosen last
    Relaxed<float> earThreshold = 0.0F;
    Relaxed<float> inputLevel = 0.0F;  // dB, of inputGain
    Mutex programNameGuard;            // never taken by a process call
    char programName[kVstMaxProgNameLen] GUARDED_BY(programNameGuard);
};
