#pragma once
#include <cstdint>

#include "base/relaxed.h"
#include "delivery/note_out.h"
#include "delivery/note_recorder.h"
#include "vst2/records.h"

// What the output to the host needs of the plug-in object.
class IVSTMIDIEffect {
public:
    // Samples delivered before the block that is being processed.
    virtual std::uint64_t GetTotalSamples() const = 0;
    virtual bool HostIsAbleton() const = 0;
    // Whether dates before the block are to be raised to its first sample.
    virtual bool RaisesEarlyDates() const = 0;
    // Hands events to the host at once; the host's answer says nothing worth knowing.
    virtual void SendEvents(VstEvents& events) = 0;

protected:
    ~IVSTMIDIEffect() = default;
};

// Hands notes to the host as MIDI events in the block in which they were recognised, one host call an event.
//
// An event is dated where the note began in the sound: the clock at the end of the frame, less the band's
// detection delay, as an offset into the block in progress. That may be negative, and is sent so. One host
// product cannot live with it: there the delay is dropped and the offset never below 0. Others drop events
// that are dated before the block: there such dates are raised to 0, and an end comes at least one sample
// after its begin, since a host may put ends first within a sample.
// A band without a MIDI note sends an event of three zero bytes.
//
// Threads: as TmtNoteOut; a Stop from a parameter or from suspend sends on that thread.
// Memory: events live on the stack of the call.
class TVSTMIDIOut : public TmtNoteOut {
public:
    explicit TVSTMIDIOut(IVSTMIDIEffect* newEffect) : effect(newEffect) {}

    void NoteOn(std::int32_t band) override;
    void NoteOff(std::int32_t band) override;
    void Send(std::uint32_t message) override;  // at the start of the block

private:
    enum class Kind { begin, end };
    void SendDated(std::int32_t band, std::uint32_t message, Kind kind);
    std::int32_t Raised(std::int32_t band, std::int32_t deltaFrames, Kind kind);
    void SendAt(std::int32_t deltaFrames, std::uint32_t message);

    IVSTMIDIEffect* const effect;  // not owned
    // Of each band's last event, in samples since construction, where dates are raised; [any] writes by Stop.
    Relaxed<std::int64_t> lastDate[TNoteRecorder::maxBands];
};
