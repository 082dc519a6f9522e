#pragma once
#include <cstddef>
#include <cstdint>
#include <list>
#include <optional>
#include <vector>

#include "base/mutex.h"
#include "base/priority_lock.h"
#include "delivery/note_out.h"

class TNotes;

// A short MIDI message of a take, with its time and the level of its note.
struct TRecordEvent {
    std::int64_t time = 0;      // samples since the recording's origin, at least 0
    std::uint32_t message = 0;  // short MIDI message
    float level = 0;            // the note's peak power, on note on and note off; 0 on other messages
};

// What a recording knows of one band's note.
struct TBandTrack {
    enum State : std::uint32_t { idle = 0, on = 1, released = 2 };
    std::uint32_t state = idle;
    std::int64_t startTime = 0;  // samples since the origin
    std::int64_t endTime = 0;    // samples since the origin
};

// The output that remembers. It joins a note that breaks and resumes, drops one that is too short, keeps each
// note's highest level, and gathers finished notes as timed messages: first in `pending`, then, when they are
// flushed, in the take, with velocities in proportion to the fourth root of their level.
//
//   state     event                 next      effect
//   idle      NoteOn                on        start taken
//   on        NoteOn                on        level taken
//   on        NoteOff               released  end taken
//   on        flush                 idle      pushed if long enough, ends now
//   released  NoteOn in the gap     on        the note resumes
//   released  NoteOn after the gap  on        old note pushed if long enough, new start
//   released  flush                 idle      pushed if long enough
//
// Life of a take: Clear and Start begin it, Stop moves what is finished to the take, Start goes on with the
// same origin, Clear discards it. Notes are filed where they began in the sound.
//
// Threads: NoteOn, NoteOff, Update [audio, locked]; Silence [any], since a change of velocity or channel
// reaches it beside the audio thread; Clear, Prepare, TopUp, GetTake [ui], of which Clear and GetTake only
// with the output stopped. Lock: a leaf lock of its own around tracks and lists, held across no other call,
// and never for longer the longer a take is: a flush hands the chunks of `pending` over as they are, and
// their velocities are scaled when the take is read.
// Memory: 16 bytes an event, two events a note. Prepare and TopUp keep chunks ready, so that the audio thread
// allocates nothing while they last; past them it allocates one at a time, and what the allocator throws
// leaves the call.
class TRTRecording : public TmtNoteOut {
public:
    static constexpr std::size_t maxBands = 128;
    static constexpr std::size_t preparedEvents = 65536;  // a few minutes of the densest playing

    void NoteOn(std::int32_t band) override;
    void NoteOff(std::int32_t band) override;
    void Silence() override;  // flushes all bands and moves `pending` to the take, running or not
    void Update() override;
    void Send(std::uint32_t message) override;  // into the take, while running
    void StartNow() override;
    void StopNow() override;

    void Clear();    // discards the take, and lets the next start set the origin; `pending` stays
    void Prepare();  // capacity for preparedEvents
    void TopUp();    // the same while the output runs
    const std::vector<TRecordEvent>& GetTake();
    std::int64_t GetElapsed() const;           // samples since the origin
    void AppendToTake(std::uint32_t message);  // with the current time, bypassing `pending`

    Relaxed<std::uint32_t> notesBegun;  // of the take, for a display; those that sound too

private:
    // The velocities of a flush: the loudest note takes the setting, others less by the fourth root of their
    // power.
    struct Scale {
        bool byLevel = false;  // else the velocities stay
        std::int32_t setting = 0;
        float loudest = 0;
        TRecordEvent Scaled(TRecordEvent event) const;
    };
    struct Chunk {
        static constexpr std::size_t capacity = 32;
        std::size_t count = 0;
        std::optional<Scale> scale;  // of these events and of those up to the next that is given
        TRecordEvent events[capacity];
    };
    using Chunks = std::list<Chunk>;

    std::int64_t EventTime(std::int32_t band) const;
    void FlushBand(const TNoteRecorder& from, std::int32_t band, std::int64_t now) REQUIRES(leaf);
    void PushNote(std::uint32_t onMessage, std::uint32_t offMessage, std::int64_t start, std::int64_t end,
                  float level) REQUIRES(leaf);
    void Push(Chunks& list, const TRecordEvent& event) REQUIRES(leaf);

    static constexpr float nearSilence = 1e-30F;  // so that silence divides by something

    PriorityLock leaf;
    Chunks pending GUARDED_BY(leaf);                   // finished notes; a flush moves them to the take
    TBandTrack bandTracks[maxBands] GUARDED_BY(leaf);  // cleared at each start
    float peakLevel[maxBands] GUARDED_BY(leaf) = {};   // highest level of each band during its current note
    float loudest GUARDED_BY(leaf) = nearSilence;      // level among the note ons of `pending`
    Chunks handedOver GUARDED_BY(leaf);                // of the take, not yet read
    Chunks spare GUARDED_BY(leaf);                     // empty
    Relaxed<std::int64_t> origin;  // the recorder's time at which the take began; 0: not begun
    // [ui]
    Chunks unread;                   // of the take, no longer under the lock
    std::vector<TRecordEvent> take;  // the recording, as far as it was read
};

// Turns a take into notes. Layers sort them by velocity, loud ones into layer 1, up to layerCount (1 to 9).
// sampleRate in Hz; 0 gives no notes. Threads: [ui]. Errors: std::bad_alloc.
void TakeToNotes(const std::vector<TRecordEvent>& take, TNotes& notes, std::uint32_t layerCount,
                 std::uint32_t sampleRate);
