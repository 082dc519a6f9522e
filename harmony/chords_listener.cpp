#include "harmony/chords_listener.h"

#include <algorithm>
#include <cassert>

#include "base/truncate.h"
#include "delivery/note_recorder.h"
#include "harmony/chord.h"

namespace {

// The ring holds longestDelay and one entry more. At rates from updatesPerSecond on, the samples of an update
// are cut to a whole number, at worst to half and a little more, which makes up to twice as many entries.
constexpr std::size_t RingCapacity(std::int32_t updatesPerSecond) {
    return 4 * static_cast<std::size_t>(updatesPerSecond);
}

}  // namespace

TChordsListener::TChordsListener(IChordOwner* chordOwner, std::int32_t updates)
    : owner(chordOwner), updatesPerSecond(std::clamp(updates, 1, mostUpdates)) {
    delayRing.reserve(RingCapacity(updatesPerSecond));
    activeBands.reserve(TNoteRecorder::maxBands);
}

void TChordsListener::Start() {
    prepareRing();
}

void TChordsListener::Stop() {
    ++stops;
    owner->ChordChanged();
}

std::uint64_t TChordsListener::Rate() const {
    return static_cast<std::uint64_t>(std::max<std::int64_t>(TruncateToInt64(owner->GetSampleRate()), 0));
}

// Names stay in their places; if the ring has become smaller, those past its end are gone.
void TChordsListener::prepareRing() {
    const std::uint64_t rate = Rate();
    const std::uint64_t step =
        std::max<std::uint64_t>(rate / static_cast<std::uint64_t>(updatesPerSecond), 1);
    samplesPerUpdate = step;
    const auto entries = static_cast<std::size_t>(rate * longestDelay / step / 1000 + 1);
    assert(entries <= delayRing.capacity());  // nothing is allocated here
    delayRing.resize(entries);
    ringSize = delayRing.size();
    writeIndex %= delayRing.size();
    ringReady = true;
    computeReadOffset();
    shownName.Set(shownEntry());
}

void TChordsListener::setDelay(std::uint64_t ms) {
    delayMs = ms;
    if (ringReady) computeReadOffset();
}

// Two threads may be here at once, and the ring may change its size meanwhile: whoever stores last looks
// again whether it computed from what holds now.
void TChordsListener::computeReadOffset() {
    std::uint64_t ms, step, size;
    do {
        ms = delayMs;
        step = samplesPerUpdate;
        size = ringSize;
        readOffset = size - Rate() * ms / step / 1000 - 1;
    } while (ms != delayMs || step != samplesPerUpdate || size != ringSize);
}

void TChordsListener::Update() {
    if (!ringReady) prepareRing();
    const TNoteRecorder* const from = recorder;
    if (from == nullptr) return;
    const std::uint64_t number = static_cast<std::uint64_t>(from->GetTime()) / samplesPerUpdate;
    if (number == lastUpdate) return;
    findActiveBands(*from);
    lastUpdate = number;
    push(nameActiveBands());
    owner->ChordChanged();
}

void TChordsListener::findActiveBands(const TNoteRecorder& from) {
    activeBands.clear();
    for (std::int32_t band = 0; band < from.numBands; ++band)
        if (from.BandSounds(band)) activeBands.push_back(static_cast<std::uint32_t>(band));
}

TChordName TChordsListener::nameActiveBands() const {
    if (activeBands.empty()) return {};
    return chordText(chordOfPitches({activeBands.data(), std::min(activeBands.size(), mostNotes)}));
}

// The entry that was shown is wiped, so that a delay made longer later does not bring it back.
void TChordsListener::push(const TChordName& name) {
    assert(writeIndex < delayRing.size());
    blankIfStopped();
    shownEntry() = TChordName();
    entry(writeIndex) = name;
    writeIndex = (writeIndex + 1) % delayRing.size();
    shownName.Set(shownEntry());
}

void TChordsListener::blankIfStopped() {
    const std::uint64_t wanted = stops;
    if (wanted == stopsDone) return;
    std::fill(delayRing.begin(), delayRing.end(), TChordName());
    shownName.Set(TChordName());
    stopsDone = wanted;
}

const TChordName& TChordsListener::currentChord() {
    if (!ringReady) prepareRing();
    blankIfStopped();
    return shownEntry();
}

TChordName TChordsListener::currentChordCopy() const {
    return stops != stopsDone ? TChordName() : shownName.Get();
}
