#include "delivery/rt_recording.h"

#include <algorithm>
#include <cmath>
#include <iterator>

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

    const Locked held(leaf);
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

    const Locked held(leaf);
    TBandTrack& track = bandTracks[band];
    if (track.state != TBandTrack::on) return;
    track.state = TBandTrack::released;
    track.endTime = time;
}

void TRTRecording::Update() {
    const TNoteRecorder* const from = recorder;
    if (!running || from == nullptr) return;
    TmtNoteOut::Update();
    const Locked held(leaf);
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
    const Locked held(leaf);
    const std::int64_t now = GetElapsed();
    for (std::int32_t band = 0; band < from->numBands; ++band) FlushBand(*from, band, now);
    if (pending.empty()) return;
    pending.front().scale = {from->dynamicVelocity, from->velocity & 127, loudest};
    loudest = nearSilence;
    handedOver.splice(handedOver.end(), pending);
}

TRecordEvent TRTRecording::Scale::Scaled(TRecordEvent event) const {
    if (!byLevel || !IsNoteOn(event.message)) return event;
    const float factor = static_cast<float>(setting) / FourthRoot(loudest);
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
    const Locked held(leaf);
    if (running) AppendToTake(message);
}

void TRTRecording::AppendToTake(std::uint32_t message) {
    const std::int64_t now = std::max<std::int64_t>(GetElapsed(), 0);
    const Locked held(leaf);
    Chunks chunk;
    Push(chunk, {now, message, 0.0F});
    chunk.front().scale = Scale();
    handedOver.splice(handedOver.end(), chunk);
}

void TRTRecording::StartNow() {
    const TNoteRecorder* const from = recorder;
    if (from != nullptr && from->active && !running) {
        if (origin == 0) origin = from->GetTime();
        {
            const Locked held(leaf);
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

void TRTRecording::Clear() {
    origin = 0;
    notesBegun = 0;
    {
        const Locked held(leaf);
        unread.splice(unread.end(), handedOver);
    }
    unread.clear();
    take.clear();
}

void TRTRecording::Push(Chunks& list, const TRecordEvent& event) {
    if (list.empty() || list.back().count == Chunk::capacity) {
        if (spare.empty()) spare.emplace_back();
        list.splice(list.end(), spare, spare.begin());
    }
    Chunk& chunk = list.back();
    chunk.events[chunk.count++] = event;
}

void TRTRecording::Prepare() {
    constexpr std::size_t wanted = preparedEvents / Chunk::capacity;
    leaf.lock();
    const std::size_t ready = spare.size();
    leaf.unlock();
    if (ready >= wanted) return;
    Chunks added(wanted - ready);
    const Locked held(leaf);
    spare.splice(spare.end(), added);
}

void TRTRecording::TopUp() {
    if (running) Prepare();
}

const std::vector<TRecordEvent>& TRTRecording::GetTake() {
    {
        const Locked held(leaf);
        unread.splice(unread.end(), handedOver);
    }
    std::size_t events = take.size();
    for (const Chunk& chunk : unread) events += chunk.count;
    take.reserve(events);  // the last that may throw, so that no flush is left half read
    Scale scale;
    for (; !unread.empty(); unread.pop_front()) {
        const Chunk& chunk = unread.front();
        scale = chunk.scale.value_or(scale);
        std::transform(chunk.events, chunk.events + chunk.count, std::back_inserter(take),
                       [&](const TRecordEvent& event) { return scale.Scaled(event); });
    }
    return take;
}
