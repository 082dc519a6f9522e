#pragma once
#include <chrono>
#include <cstdint>
#include <thread>

#include "base/priority_lock.h"
#include "base/relaxed.h"
#include "delivery/output_list.h"
#include "engine/note_detector.h"

// Turns the detector's bands into MIDI messages, keeps the sample clock, and offers each frame to the
// attached outputs. There is no queue: a note is a virtual call on the audio thread, inside the lock, in the
// frame in which its band changed.
//
// In OnFrame the clock already stands at the end of the frame when the outputs see it, while `playing` still
// holds the frame before: the pair is what lets each output find the changes.
//
// Threads: OnFrame [audio]. Attach, Activate before the first frame. All others [any].
// Lock: recursive, held through all delivery in OnFrame, and by Start and Stop of TmtNoteOut, but for a
// thread whose wait times out (see Hold): it keeps events in order, and is not what keeps memory safe. The
// operations that change messages take it only while the recorder is not active: beside the audio thread they
// run unlocked, so that a setting never waits for a block. Words that both sides touch are relaxed atomics;
// what can go wrong is one event with the note or channel from before the change. Errors: none are reported.
class TNoteRecorder : public INoteHandler {
public:
    static constexpr std::int32_t maxBands = 128;

    TNoteRecorder() = default;
    ~TNoteRecorder() override;
    TNoteRecorder(const TNoteRecorder&) = delete;
    TNoteRecorder& operator=(const TNoteRecorder&) = delete;

    void Attach(INoteDetector* newDetector) override;  // null changes nothing
    void OnFrame() override;                           // [audio]
    // Takes its notes from another detector of the same bands and rate from now on: all notes off, and the
    // clock runs on. Behind whatever keeps frames from coming meanwhile.
    void Follow(INoteDetector& other);

    void Activate(std::uint32_t offset);
    void Deactivate() { active = false; }
    bool IsActive() const { return active; }
    std::int64_t GetTime() const { return time; }
    void SetTime(std::int64_t samples) { time = samples; }
    std::int32_t GetFrameLength() const { return frameLength; }
    std::uint32_t GetSampleRate() const { return sampleRate; }
    std::int32_t GetBandCount() const { return numBands; }

    bool BandSounds(std::int32_t band) const { return BandIsOn(bandOn, band) && enabled[band]; }
    // [audio, locked] The first band from `band` on that sounds and does not play, or the reverse; numBands
    // if there is none.
    std::int32_t NextChange(std::int32_t band) const;
    // Shows the detector's bands to whoever reads the two below: at each frame, and to be called after a
    // reset, where the detector may be touched.
    void CopyBands();
    // The band's level at the end of the last frame; power, at least 0.
    float GetBandLevel(std::int32_t band) const { return frameLevel[band]; }
    bool GetBandOn(std::int32_t band) const { return frameOn[band]; }  // its flag then, for a display
    // The highest level of the band with this MIDI note since it last began; 0 where no band has it.
    float GetPeakLevel(std::uint32_t note) const;
    std::int32_t BandDelaySamples(std::int32_t band) const;  // from a note's begin in the sound to its flag
    std::uint32_t ProgramMessage() const;

    void AddOutput(TNoteOut* output);           // null, or one that is attached already: ignored
    void AddAutoStartOutput(TNoteOut* output);  // attached, and started by the first note
    void RemoveOutput(TNoteOut* output);        // not stopped, not deleted
    // False while some thread may still be inside a removed output; it must not be deleted then.
    bool OutputsAreQuiet() const { return outputs.Quiet(); }

    void AllNotesOff();  // bands that stay on start afresh in the next frame
    void Broadcast(std::uint32_t message);
    void CountSent() { messagesSent = messagesSent + 1; }

    void SetSendProgramChange(bool on);  // turning it on sends the program at once
    void SetProgram(std::int32_t newProgram);
    void SetStartOnFirstNote(bool on);

    // Nothing if nothing changes; else all notes off, store, rebuild the messages. A change of channel sends
    // the program whether or not sendProgramChange is set.
    void ChangeTranspose(std::int32_t semitones);
    void ChangeChannel(std::int32_t newChannel);
    void ChangeVelocity(std::int32_t newVelocity);
    void ChangeMapping(std::int32_t semitones, std::int32_t newChannel, std::int32_t newVelocity);
    // The same without comparison or lock, for callers that know what they do.
    void SetTranspose(std::int32_t semitones);
    void SetChannel(std::int32_t newChannel);
    void SetVelocity(std::int32_t newVelocity);
    void SetMapping(std::int32_t semitones, std::int32_t newChannel, std::int32_t newVelocity);

    // The lock for the length of a scope, unless waiting for it times out. A host may hold a lock of its own
    // around a call to us and take it in its callback, too, so that two of its threads would wait for each
    // other for ever. After `timeout` a thread continues without our lock; at worst an event is out of order.
    // Within such a scope it does not wait a second time.
    class Hold {
    public:
        explicit Hold(TNoteRecorder& held, bool wanted = true);
        ~Hold();
        Hold(const Hold&) = delete;
        Hold& operator=(const Hold&) = delete;

        // Many times what a frame takes; with the 100 ms of a suspend, what a host still takes for an answer.
        static constexpr auto timeout = std::chrono::milliseconds(40);

    private:
        TNoteRecorder& recorder;
        bool locked = false;
        bool gaveUp = false;
    };
    void Lock() ACQUIRE(mutex) { mutex.lock(); }
    void Unlock() RELEASE_LOCK(mutex) { mutex.unlock(); }

    struct BandMessages {
        Relaxed<std::uint32_t> onMessage;   // note on with the velocity setting; 0 for a band without a note
        Relaxed<std::uint32_t> offMessage;  // note off, velocity 0; 0 likewise
    };
    BandMessages messages[maxBands];      // [any] writes
    Relaxed<std::int64_t> minNoteLength;  // samples; no setter
    Relaxed<std::int64_t> minNoteGap;     // samples; no setter
    Relaxed<bool*> bandOn = nullptr;      // the detector's; read through BandSounds
    alignas(
        8) Relaxed<bool> playing[maxBands];  // on and enabled after the last frame; AllNotesOff [any] clears
    alignas(8) Relaxed<bool> enabled[maxBands];  // mask; all set by Attach
    Relaxed<std::int32_t> numBands;              // fixed by Attach; 0 without a detector
    Relaxed<std::int32_t> referenceBand;         // the band of 440 Hz
    Relaxed<std::int32_t> transpose;             // semitones added to each band's note
    Relaxed<std::int32_t> channel;               // from 0; its low 4 bits are used
    Relaxed<std::int32_t> velocity = 100;        // its low 7 bits are used
    Relaxed<std::int32_t> program;               // its low 7 bits are used
    bool dynamicVelocity = true;                 // a recording scales velocities by level; no setter
    Relaxed<bool> active;                        // frames are handled
    // What outputs have sent out of the plug-in, for a lamp: two threads at once may count as one. Any
    // writes.
    Relaxed<std::uint32_t> messagesSent;
    Relaxed<bool> firstNoteSeen;
    Relaxed<float*> bandLevel = nullptr;  // the detector's; for OnFrame alone
    std::int32_t frameLength = 0;         // samples; taken by Attach
    std::uint32_t sampleRate = 0;         // Hz; taken once, by Attach
    std::uint32_t startOffset = 0;        // as given to Activate; no decision reads it
    Relaxed<bool> startOnFirstNote;
    OutputList outputs;                          // owned at destruction
    OutputList autoStartOutputs;                 // each of them in outputs too
    Relaxed<bool> sendProgramChange = true;      // program messages go out on their own occasions
    Relaxed<std::int64_t> time;                  // the system's note clock, samples
    Relaxed<INoteDetector*> detector = nullptr;  // not owned

private:
    void BuildMessages();
    std::uint64_t EightSounding(std::int32_t band) const;
    void StartOnFirstNote();
    void RaisePeaks();
    template <typename Store>
    void Change(Store store);

    PriorityLock mutex;
    Relaxed<std::thread::id> goesWithout;  // the thread that gave up waiting for it; else none
    // The detector's arrays as they stood at the end of the last frame, or after a reset, for whoever is not
    // inside OnFrame.
    Relaxed<float> frameLevel[maxBands];
    Relaxed<bool> frameOn[maxBands];
    Relaxed<float> peakLevel[maxBands];  // OnFrame writes
};
