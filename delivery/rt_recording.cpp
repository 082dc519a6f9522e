#include "delivery/rt_recording.h"

#include <algorithm>
#include <cmath>
#include <mutex>

#include "base/scoped.h"
#include "base/truncate.h"
#include "delivery/note_recorder.h"

namespace {

bool IsNoteOn(std::uint32_t message) {
    return (message & 0xF0U) == 0x90U;
}

float FourthRoot(float power) {
    return std::sqrt(std::sqrt(power));
}

// A band's two messages, always of one note: a transposition on another thread may replace them between two
// looks, so the second is made from the first as the recorder makes it.
struct BandNote {
    BandNote(const TNoteRecorder& from, std::int32_t band)
        : on(from.messages[band].onMessage),
          off(from.messages[band].offMessage == 0 ? 0 : (on & 0xFF0FU) | 0x80U) {}
    bool Exists() const { return on != 0 && off != 0; }  // a band without a MIDI note keeps no track

    const std::uint32_t on;
    const std::uint32_t off;
};

}  // namespace

TRTRecording::TRTRecording() {
    pending.reserve(firstRoom);
    take.reserve(firstRoom);
}

std::int64_t TRTRecording::GetElapsed() const {
    const TNoteRecorder* const from = recorder;
    return from != nullptr ? from->GetTime() - origin : 0;
}

// Where the note began or ended in the sound, and not where that was recognised.
std::int64_t TRTRecording::EventTime(std::int32_t band) const {
    const TNoteRecorder* const from = recorder;
    return std::max<std::int64_t>(from->GetTime() - origin - from->BandDelaySamples(band), 0);
}

void TRTRecording::NoteOn(std::int32_t band) {
    const TNoteRecorder* const from = recorder;
    if (from == nullptr) return;
    const BandNote note(*from, band);
    if (!note.Exists()) return;
    const std::int64_t time = EventTime(band);
    const float level = from->GetBandLevel(band);

    const std::lock_guard<PriorityLock> held(leaf);
    TBandTrack& track = bandTracks[band];
    if (track.state == TBandTrack::idle) {
        track.startTime = time;
        notesBegun = notesBegun + 1;
    } else if (track.state == TBandTrack::released && time - track.endTime > from->minNoteGap) {
        if (track.endTime - track.startTime > from->minNoteLength)
            PushNote(note.on, note.off, track.startTime, track.endTime, peakLevel[band]);
        track.startTime = time;
        notesBegun = notesBegun + 1;
    }
    peakLevel[band] = level;  // a note that resumes forgets its earlier peak, too
    track.state = TBandTrack::on;
}

void TRTRecording::NoteOff(std::int32_t band) {
    const TNoteRecorder* const from = recorder;
    if (from == nullptr || !BandNote(*from, band).Exists()) return;
    const std::int64_t time = EventTime(band);

    const std::lock_guard<PriorityLock> held(leaf);
    TBandTrack& track = bandTracks[band];
    if (track.state != TBandTrack::on) return;
    track.state = TBandTrack::released;
    track.endTime = time;
}

void TRTRecording::Update() {
    const TNoteRecorder* const from = recorder;
    if (!running || from == nullptr) return;
    TmtNoteOut::Update();
    const std::lock_guard<PriorityLock> held(leaf);
    for (std::int32_t band = 0; band < from->numBands; ++band)
        if (from->BandSounds(band)) peakLevel[band] = std::max(peakLevel[band], from->GetBandLevel(band));
}

void TRTRecording::PushNote(std::uint32_t onMessage, std::uint32_t offMessage, std::int64_t start,
                            std::int64_t end, float level) {
    Push(pending, {start, onMessage, level});
    loudest = std::max(loudest, level);
    Push(pending, {end, offMessage, level});
}

// A note that still sounds ends at the clock as it stands; unlike all other times, that takes no delay off.
// One that is too short leaves no trace.
void TRTRecording::FlushBand(const TNoteRecorder& from, std::int32_t band, std::int64_t now) {
    TBandTrack& track = bandTracks[band];
    const BandNote note(from, band);
    const std::int64_t end = track.state == TBandTrack::on ? now : track.endTime;
    if (note.Exists() && track.state != TBandTrack::idle && end - track.startTime > from.minNoteLength)
        PushNote(note.on, note.off, track.startTime, end, peakLevel[band]);
    track.state = TBandTrack::idle;
}

void TRTRecording::Silence() {
    const TNoteRecorder* const from = recorder;
    if (from == nullptr) return;
    Flush(*from);
    if (!stopMoves) MoveFlushed();
}

// A flush before this one may still be moving, on another thread: its notes go first.
void TRTRecording::Flush(const TNoteRecorder& from) {
    for (;;) {
        MoveFlushed();
        const std::lock_guard<PriorityLock> held(leaf);
        if (flushed != 0) continue;
        const std::int64_t now = GetElapsed();
        for (std::int32_t band = 0; band < from.numBands; ++band) FlushBand(from, band, now);
        flushed = pending.size();
        const std::int32_t setting = from.velocity & 127;
        scale = {from.dynamicVelocity, setting, loudest, static_cast<float>(setting) / FourthRoot(loudest)};
        loudest = nearSilence;
        return;
    }
}

// Whoever finds flushed notes moves them, not only who flushed: when a call returns, all of them are there.
void TRTRecording::MoveFlushed() {
    while (MovePiece()) continue;
}

// False once nothing is left. Where the allocator throws, what has not been moved is moved next time.
bool TRTRecording::MovePiece() {
    const std::lock_guard<PriorityLock> held(leaf);
    for (std::size_t left = piece; left > 0 && moved < flushed; --left, ++moved)
        Push(take, scale.Scaled(pending[moved]));
    if (moved < flushed) return true;
    if (flushed == 0) return false;
    pending.erase(pending.begin(), pending.begin() + static_cast<std::ptrdiff_t>(flushed));
    flushed = moved = 0;
    ++clears;
    return false;
}

TRecordEvent TRTRecording::Scale::Scaled(TRecordEvent event) const {
    if (!byLevel || !IsNoteOn(event.message)) return event;
    // The product alone would come out one too low for the loudest, at every twelfth level or so.
    const std::int32_t velocity = event.level >= loudest
                                      ? setting
                                      : std::clamp(TruncateToInt32(factor * FourthRoot(event.level)), 0, 127);
    event.message = (event.message & 0xFFFFU) | static_cast<std::uint32_t>(velocity) << 16;
    return event;
}

// Whether it runs is asked inside the lock: a stop passes through it, too, so that whoever stopped the
// recording has the take alone.
void TRTRecording::Send(std::uint32_t message) {
    const std::int64_t now = std::max<std::int64_t>(GetElapsed(), 0);
    const std::lock_guard<PriorityLock> held(leaf);
    if (running) Push(take, {now, message, 0.0F});
}

void TRTRecording::AppendToTake(std::uint32_t message) {
    const std::int64_t now = std::max<std::int64_t>(GetElapsed(), 0);
    const std::lock_guard<PriorityLock> held(leaf);
    Push(take, {now, message, 0.0F});
}

void TRTRecording::StartNow() {
    const TNoteRecorder* const from = recorder;
    if (from != nullptr && from->active && !running) {
        if (origin == 0) origin = from->GetTime();
        {
            const std::lock_guard<PriorityLock> held(leaf);
            std::fill_n(bandTracks, from->numBands.load(), TBandTrack());
        }
        AppendToTake(from->ProgramMessage());  // each run of a take begins by stating its program
    }
    TmtNoteOut::StartNow();
}

// Here Silence does not ask whether the output runs, so that nothing new comes in behind the flush.
void TRTRecording::StopNow() {
    if (!running) return;
    running = false;
    Silence();
}

// What other threads flush while this one is at it is moved here, too.
void TRTRecording::Stop() {
    MoveFlushed();  // so that the flush under the recorder's lock finds none before it
    {
        const ScopedValue later(stopMoves, true);
        TmtNoteOut::Stop();
    }
    MoveFlushed();
}

void TRTRecording::Clear() {
    origin = 0;
    const std::lock_guard<PriorityLock> held(leaf);
    take.clear();
    notesBegun = 0;
    ++clears;
}

void TRTRecording::Push(std::vector<TRecordEvent>& list, const TRecordEvent& event) {
    if (list.size() == list.capacity())
        list.reserve(list.capacity() + std::max<std::size_t>(list.capacity() / 2, 1));
    list.push_back(event);
}

std::size_t TRTRecording::Waiting() const {
    const std::lock_guard<PriorityLock> held(leaf);
    return pending.size();
}

void TRTRecording::Prepare() {
    GiveRoom(pending, preparedRoom, preparedRoom, true);
    const std::size_t ahead = Waiting() + 2 * preparedRoom;
    GiveRoom(take, ahead, ahead, true);
}

void TRTRecording::TopUp() {
    GiveRoom(pending, preparedRoom / 2, preparedRoom, false);
    const std::size_t later =
        Waiting() + preparedRoom;  // what `pending` has and may still take in ends up here
    GiveRoom(take, later + preparedRoom / 2, later + preparedRoom, false);
}

// Copies into a larger list a piece at a time, and lets the audio thread in between. Lists only grow at their
// end, so what was copied stays right until one is emptied, which `clears` counts.
void TRTRecording::GiveRoom(std::vector<TRecordEvent>& list, std::size_t enough, std::size_t wanted,
                            bool evenStopped) {
    std::vector<TRecordEvent> larger;
    std::size_t clearsSeen = 0;
    {
        const std::lock_guard<PriorityLock> held(leaf);
        if (!(running || evenStopped) || list.capacity() - list.size() >= enough) return;
        clearsSeen = clears;
        wanted += list.size();
    }
    larger.reserve(wanted);
    for (bool complete = false; !complete;) {
        const std::lock_guard<PriorityLock> held(leaf);
        if (!(running || evenStopped) || clears != clearsSeen || list.size() > larger.capacity()) return;
        const auto next = list.begin() + static_cast<std::ptrdiff_t>(larger.size());
        const std::size_t left = list.size() - larger.size();
        larger.insert(larger.end(), next, next + static_cast<std::ptrdiff_t>(std::min(left, piece)));
        complete = left <= piece;
        if (complete) list.swap(larger);
    }
}
