#pragma once
#include <cstdint>

#include "base/relaxed.h"

class TNoteRecorder;

// Something that wants notes: the host, a device, a recording, the chord listener. Once per frame the
// recorder offers it the frame, and it finds by itself which bands came on and which went off.
//
// A band is an index into the detector's arrays. A short MIDI message is a word: status in bits 0 to 7, data
// bytes in bits 8 to 15 and 16 to 23.
//
// Threads: [audio, locked] is the audio thread inside the recorder's lock. The fields are words that several
// threads share. Ownership: the recorder owns an output that is still attached when it dies.
//
//   running  silenced   state
//   false    true       idle, as constructed
//   true     true       started, before its first frame; or after all notes were ended
//   true     false      delivering
class TNoteOut {
public:
    TNoteOut() = default;
    TNoteOut(const TNoteOut&) = delete;
    TNoteOut& operator=(const TNoteOut&) = delete;

    virtual void NoteOn(std::int32_t band) = 0;   // [audio, locked], or as Start
    virtual void NoteOff(std::int32_t band) = 0;  // [audio, locked], or as Stop and Silence
    virtual void SetRecorder(TNoteRecorder* newRecorder) { recorder = newRecorder; }
    virtual void Release() { delete this; }
    virtual void AutoStart() {}             // [audio, locked] the first note of all has come
    virtual void Start() { StartSteps(); }  // picks up the bands that are on
    virtual void Stop() { StopSteps(); }    // ends the notes that it was given
    virtual void Silence();                 // [any] a note off for each note that plays
    virtual void Update();                  // [audio, locked] a frame
    virtual void Send(std::uint32_t) {}     // [any] a message beside the notes
    virtual ~TNoteOut() = default;

    Relaxed<TNoteRecorder*> recorder = nullptr;  // not owned; null while detached
    Relaxed<bool> running = false;               // receives notes
    Relaxed<bool> silenced = true;               // all its notes are off
    Relaxed<std::int32_t> soundingCount = 0;     // notes on less notes off since the last start; informative

protected:
    void StartSteps();
    void StopSteps();
    void BeginNote(std::int32_t band);
    void EndNote(std::int32_t band);
};

// An output whose Start and Stop may come from any thread: they hold the recorder's lock while it is active.
class TmtNoteOut : public TNoteOut {
public:
    void AutoStart() override { StartNow(); }
    void Start() override;                     // [any]
    void Stop() override;                      // [any]
    virtual void StartNow() { StartSteps(); }  // [any, locked]
    virtual void StopNow() { StopSteps(); }    // [any, locked]
};
