#include "delivery/note_recorder.h"

#include <algorithm>
#include <cassert>
#include <cstring>

#include "base/truncate.h"
#include "delivery/note_out.h"

namespace {

constexpr std::int32_t noteOf440 = 69;  // MIDI
constexpr std::uint32_t statusNoteOff = 0x80;
constexpr std::uint32_t statusNoteOn = 0x90;
constexpr std::uint32_t statusProgram = 0xC0;

// Eight flags as the bytes of a word. Most of the time nothing is among them to be done, and a look at each
// band by itself, for each output, cost a twentieth of the whole path of the audio.
constexpr std::int32_t eight = 8;
std::uint64_t Eight(const Relaxed<bool>* flags) {
    static_assert(sizeof(Relaxed<bool>) == 1);
    using Word [[gnu::may_alias]] = std::uint64_t;
    return __atomic_load_n(reinterpret_cast<const Word*>(flags), __ATOMIC_RELAXED);
}

}  // namespace

// With no bands left, no output's destructor can send a note.
TNoteRecorder::~TNoteRecorder() {
    active = false;
    numBands = 0;
    outputs.ForEach([](TNoteOut& output) { output.Release(); });
}

TNoteRecorder::Hold::Hold(TNoteRecorder& held, bool wanted) : recorder(held) {
    if (!wanted) return;
    const bool again = recorder.goesWithout == std::this_thread::get_id();
    locked = again ? recorder.mutex.try_lock() : recorder.mutex.try_lock_for(timeout);
    gaveUp = !locked && !again;
    if (gaveUp) recorder.goesWithout = std::this_thread::get_id();
}

TNoteRecorder::Hold::~Hold() {
    if (locked) recorder.mutex.unlock();
    if (gaveUp) recorder.goesWithout = std::thread::id();
}

void TNoteRecorder::Attach(INoteDetector* newDetector) {
    if (newDetector == nullptr) return;
    AllNotesOff();
    detector = newDetector;
    bandOn = nullptr;
    numBands = 0;
    bandLevel = nullptr;
    bandOn = detector->bandOn;
    if (bandOn == nullptr) return;
    bandLevel = detector->bandLevel;
    if (bandLevel == nullptr) return;
    referenceBand = detector->referenceBand;
    if (detector->numBands < 1) return;
    frameLength = detector->frameLength;
    sampleRate = static_cast<std::uint32_t>(detector->sampleRate.load());
    numBands = std::min(detector->numBands, maxBands);
    time = 0;
    for (std::int32_t band = 0; band < numBands; ++band) enabled[band] = true;
    BuildMessages();
}

void TNoteRecorder::Follow(INoteDetector& other) {
    assert(other.numBands >= numBands && other.bandOn != nullptr && other.bandLevel != nullptr);
    const Hold held(*this);
    AllNotesOff();
    detector = &other;
    bandOn = other.bandOn;
    bandLevel = other.bandLevel;
}

void TNoteRecorder::BuildMessages() {
    const auto onChannel = static_cast<std::uint32_t>(channel & 15);
    const auto withVelocity = static_cast<std::uint32_t>(velocity & 127) << 16;
    // Wrapping sums: a transposition may be any word, and what lies outside 0 to 127 has no note.
    const std::uint32_t noteOfBand0 = static_cast<std::uint32_t>(transpose.load()) -
                                      static_cast<std::uint32_t>(referenceBand.load()) +
                                      static_cast<std::uint32_t>(noteOf440);
    for (std::int32_t band = 0; band < numBands; ++band) {
        const std::uint32_t note = noteOfBand0 + static_cast<std::uint32_t>(band);
        const bool inRange = note <= 127;
        messages[band].onMessage = inRange ? statusNoteOn | onChannel | note << 8 | withVelocity : 0;
        messages[band].offMessage = inRange ? statusNoteOff | onChannel | note << 8 : 0;
    }
}

void TNoteRecorder::OnFrame() {
    if (!active) return;
    const Hold held(*this);
    assert(numBands <= maxBands && frameLength >= 0);
    time = time + frameLength;
    CopyBands();
    RaisePeaks();
    if (startOnFirstNote && !firstNoteSeen) StartOnFirstNote();
    outputs.ForEach([](TNoteOut& output) { output.Update(); });
    for (std::int32_t band = NextChange(0); band < numBands; band = NextChange(band + 1))
        playing[band] = BandSounds(band);
}

void TNoteRecorder::CopyBands() {
    for (std::int32_t band = 0; band < numBands; ++band) {
        frameLevel[band] = bandLevel[band];
        frameOn[band] = bandOn[band];
    }
}

// BandSounds of eight bands; all of them lie below numBands.
std::uint64_t TNoteRecorder::EightSounding(std::int32_t band) const {
    std::uint64_t on;
    std::memcpy(&on, bandOn + band, sizeof on);  // whoever else writes flags does so while no frame runs
    return on & Eight(enabled + band);
}

std::int32_t TNoteRecorder::NextChange(std::int32_t band) const {
    const std::int32_t end = numBands;
    while (band < end)
        if (band % eight == 0 && band + eight <= end && EightSounding(band) == Eight(playing + band))
            band += eight;
        else if (BandSounds(band) != playing[band])
            return band;
        else
            ++band;
    return end;
}

void TNoteRecorder::RaisePeaks() {
    for (std::int32_t band = 0; band < numBands;)
        if (band % eight == 0 && band + eight <= numBands && EightSounding(band) == 0) {
            band += eight;
        } else {
            if (BandSounds(band))
                peakLevel[band] =
                    std::max(frameLevel[band].load(), playing[band] ? peakLevel[band].load() : 0.0F);
            ++band;
        }
}

float TNoteRecorder::GetPeakLevel(std::uint32_t note) const {
    for (std::int32_t band = 0; band < numBands; ++band)
        if (messages[band].offMessage != 0 && (messages[band].offMessage >> 8 & 127U) == note)
            return peakLevel[band];
    return 0;
}

void TNoteRecorder::StartOnFirstNote() {
    const bool* const flags = bandOn;
    if (!std::any_of(flags, flags + numBands, [](bool on) { return on; })) return;
    firstNoteSeen = true;
    autoStartOutputs.ForEach([](TNoteOut& output) { output.AutoStart(); });
}

void TNoteRecorder::Activate(std::uint32_t offset) {
    startOffset = offset;
    active = true;
}

std::int32_t TNoteRecorder::BandDelaySamples(std::int32_t band) const {
    if (detector == nullptr) return 0;
    return TruncateToInt32(detector->GetBandDelay(band) * 0.001F * static_cast<float>(sampleRate));
}

std::uint32_t TNoteRecorder::ProgramMessage() const {
    return static_cast<std::uint32_t>(program & 127) << 8 | statusProgram |
           static_cast<std::uint32_t>(channel & 15);
}

void TNoteRecorder::AddOutput(TNoteOut* output) {
    if (output == nullptr) return;
    const Hold held(*this);
    if (outputs.Contains(output)) return;
    assert(output->recorder == nullptr);  // of one recorder at a time
    output->SetRecorder(this);
    if (sendProgramChange) output->Send(ProgramMessage());
    outputs.Append(output);
}

void TNoteRecorder::AddAutoStartOutput(TNoteOut* output) {
    if (output == nullptr) return;
    const Hold held(*this);
    autoStartOutputs.Append(output);
    AddOutput(output);
}

void TNoteRecorder::RemoveOutput(TNoteOut* output) {
    if (output == nullptr) return;
    const Hold held(*this);
    autoStartOutputs.Remove(output);
    outputs.Remove(output);
    output->SetRecorder(nullptr);
}

void TNoteRecorder::AllNotesOff() {
    outputs.ForEach([](TNoteOut& output) { output.Silence(); });
    for (std::int32_t band = 0; band < numBands; ++band) playing[band] = false;
}

void TNoteRecorder::Broadcast(std::uint32_t message) {
    outputs.ForEach([message](TNoteOut& output) { output.Send(message); });
}

void TNoteRecorder::SetSendProgramChange(bool on) {
    sendProgramChange = on;
    if (on) Broadcast(ProgramMessage());
}

void TNoteRecorder::SetProgram(std::int32_t newProgram) {
    if (newProgram == program) return;
    program = newProgram;
    if (sendProgramChange) Broadcast(ProgramMessage());
}

void TNoteRecorder::SetStartOnFirstNote(bool on) {
    startOnFirstNote = on;
    firstNoteSeen = false;
}

void TNoteRecorder::SetTranspose(std::int32_t semitones) {
    AllNotesOff();
    transpose = semitones;
    BuildMessages();
}

void TNoteRecorder::SetChannel(std::int32_t newChannel) {
    AllNotesOff();
    channel = newChannel;
    BuildMessages();
    Broadcast(ProgramMessage());
}

void TNoteRecorder::SetVelocity(std::int32_t newVelocity) {
    AllNotesOff();
    velocity = newVelocity;
    BuildMessages();
}

void TNoteRecorder::SetMapping(std::int32_t semitones, std::int32_t newChannel, std::int32_t newVelocity) {
    AllNotesOff();
    transpose = semitones;
    channel = newChannel;
    velocity = newVelocity;
    BuildMessages();
}

// Beside the audio thread, that is while active, a change takes no lock.
template <typename Store>
void TNoteRecorder::Change(Store store) {
    const Hold held(*this, !active);
    store();
}

void TNoteRecorder::ChangeTranspose(std::int32_t semitones) {
    if (semitones != transpose) Change([&] { SetTranspose(semitones); });
}

void TNoteRecorder::ChangeChannel(std::int32_t newChannel) {
    if (newChannel != channel) Change([&] { SetChannel(newChannel); });
}

void TNoteRecorder::ChangeVelocity(std::int32_t newVelocity) {
    if (newVelocity != velocity) Change([&] { SetVelocity(newVelocity); });
}

void TNoteRecorder::ChangeMapping(std::int32_t semitones, std::int32_t newChannel, std::int32_t newVelocity) {
    if (semitones != transpose || newChannel != channel || newVelocity != velocity)
        Change([&] { SetMapping(semitones, newChannel, newVelocity); });
}
