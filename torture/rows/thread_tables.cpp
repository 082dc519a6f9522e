// THR-2: settings that change beside the audio thread without a lock. THR-4: the chord text, read beside its
// writer.
#include <atomic>
#include <map>
#include <set>
#include <string>
#include <thread>

#include "delivery/note_recorder.h"
#include "delivery/rt_midi_out.h"
#include "delivery/rt_recording.h"
#include "delivery/vst_midi_out.h"
#include "harmony/chords_listener.h"
#include "tests/delivery/fakes.h"
#include "tests/support/counting_devices.h"
#include "torture/row.h"

namespace {

// Bands that a row sets by hand, all at full level.
class LoudDetector : public FakeDetector {
public:
    LoudDetector() { std::fill_n(level, numBands, 1.0F); }
};

// --- THR-2 ---

struct Mapping {
    std::int32_t transpose, channel, velocity;
};
// No two share a channel, a velocity or, for the bands below, a note.
constexpr Mapping mappings[] = {{0, 0, 100}, {30, 5, 40}, {-20, 11, 77}};
constexpr int lowestBand = 40, highestBand = 49;  // those in use: 10 notes a mapping

std::atomic<long> mixed{0}, sent{0};

const Mapping* OfChannel(std::uint32_t channel) {
    for (const Mapping& each : mappings)
        if (static_cast<std::uint32_t>(each.channel) == channel) return &each;
    return nullptr;
}

// Whether the word's note and velocity are those of its channel's mapping. `dynamic`: any velocity will do.
bool IsWhole(std::uint32_t message, bool dynamic) {
    const std::uint32_t kind = message & 0xF0U;
    const auto note = static_cast<std::int32_t>(message >> 8 & 127U);
    const auto velocity = static_cast<std::int32_t>(message >> 16 & 127U);
    const Mapping* const mapping = OfChannel(message & 15U);
    if (mapping == nullptr) return false;
    if (kind == 0xC0U) return true;
    const std::int32_t band = note - mapping->transpose - 24;
    if (band < lowestBand || band > highestBand) return false;
    if (kind == 0x80U) return velocity == 0;
    return kind == 0x90U && (dynamic || velocity == mapping->velocity);
}

void Judge(std::uint32_t message) {
    if (!IsWhole(message, false)) mixed.fetch_add(1, std::memory_order_relaxed);
    sent.fetch_add(1, std::memory_order_relaxed);
}

class JudgingEffect : public IVSTMIDIEffect {
public:
    std::uint64_t GetTotalSamples() const override { return 0; }
    bool HostIsAbleton() const override { return false; }
    void SendEvents(VstEvents& events) override {
        const char* const data = reinterpret_cast<const VstMidiEvent*>(events.events[0])->midiData;
        std::uint32_t message = 0;
        for (int byte = 0; byte < 3; ++byte)
            message |= static_cast<std::uint32_t>(static_cast<unsigned char>(data[byte])) << 8 * byte;
        Judge(message);
    }
};

class QuietOwner : public IChordOwner {
public:
    float GetSampleRate() const override { return 44100; }
    void ChordChanged() override {}
};

// In the order in which a take is filed: each note on is followed by its own note off, no later than it.
void RequirePaired(const Trial& trial, const std::vector<TRecordEvent>& take) {
    const TRecordEvent* open = nullptr;
    std::int64_t lastMessage = 0;
    for (const TRecordEvent& event : take) {
        trial.Require(IsWhole(event.message, true), "a word of two mappings in the take");
        const std::uint32_t kind = event.message & 0xF0U;
        if (kind == 0xC0U) {
            trial.Require(event.time >= lastMessage, "program changes out of order");
            lastMessage = event.time;
        } else if (kind == 0x90U) {
            trial.Require(open == nullptr, "two note ons in a row");
            open = &event;
        } else {
            trial.Require(open != nullptr, "a note off without its note on");
            trial.Require((open->message & 0xFF0FU) == (event.message & 0xFF0FU),
                          "a note off of another note");
            trial.Require(open->time < event.time, "a note of no length");
            open = nullptr;
        }
    }
    trial.Require(open == nullptr, "a note without an end");
}

constexpr long changesEach = 10000, framesEach = 1000;

void TryMappings(Trial& trial) {
    CountingDevices& devices = Substitutes::InPlace().devices;
    devices.judge = Judge;
    sent = 0;
    LoudDetector detector;
    JudgingEffect effect;
    QuietOwner owner;
    TNoteRecorder recorder;
    recorder.Attach(&detector);
    recorder.Activate(0);
    recorder.ChangeMapping(mappings[0].transpose, mappings[0].channel, mappings[0].velocity);
    auto* const recording = new TRTRecording;
    for (TNoteOut* const output : std::initializer_list<TNoteOut*>{
             new TVSTMIDIOut(&effect), new TRTMidiOut(0), recording, new TChordsListener(&owner, 10)}) {
        recorder.AddOutput(output);  // the recorder's from here on
        output->Start();
    }
    std::atomic<bool> done{false};
    const auto seed = static_cast<unsigned>(trial.random());
    std::thread audio([&] {
        std::minstd_rand random(seed);
        for (long frame = 0; frame < framesEach || !done.load(std::memory_order_relaxed); ++frame) {
            for (int band = lowestBand; band <= highestBand; ++band)
                if (random() / 16 % 4 == 0) detector.Set(band, !detector.on[band]);
            recorder.OnFrame();
        }
    });
    for (long i = 0; i < changesEach; ++i) {
        const Mapping& next = mappings[trial.Below(3)];
        recorder.ChangeMapping(next.transpose, next.channel, next.velocity);
        if (i % 16 == 0) recorder.SetProgram(static_cast<std::int32_t>(trial.Below(128)));
    }
    done = true;
    audio.join();
    recording->Stop();
    trial.Require(mixed == 0, std::to_string(mixed) + " words of two mappings");
    trial.Require(sent > 0, "nothing was sent");
    trial.Require(devices.faults == 0, "a device met what it should not");
    RequirePaired(trial, recording->GetTake());
    Trial::Figure("events", static_cast<double>(sent));
}

// --- THR-4 ---

// Names of one letter each, as long as it is far from 'a': a torn one has two letters, or the wrong length.
TChordName NameOfLetter(std::uint64_t letter) {
    return TChordName(std::string(letter + 1, static_cast<char>('a' + letter)));
}
bool IsOneLetter(std::string_view text) {
    return text.empty() || (text.find_first_not_of(text[0]) == text.npos &&
                            text.size() == static_cast<std::size_t>(text[0] - 'a') + 1);
}

constexpr long writesEach = 100000;

// The ring alone, at full speed, its size changing.
void TryRing(Trial& trial) {
    NameRing ring(40);
    {
        const NameRing::Change change(ring);
        ring.Resize(21);
    }
    std::atomic<bool> done{false}, torn{false};
    std::atomic<long> reads{0};
    std::thread reader([&] {
        for (std::size_t i = 0; !done.load(std::memory_order_relaxed); ++i) {
            const TChordName seen = ring.Read([&] { return ring.Get(i % 21); });
            if (!IsOneLetter(seen.view())) torn = true;
            reads.fetch_add(1, std::memory_order_relaxed);
        }
    });
    for (long i = 0; i < writesEach || reads < 1000; ++i) {
        const NameRing::Change change(ring);
        ring.Set(trial.Below(21), NameOfLetter(trial.Below(26)));
        if (trial.OneIn(1000)) ring.Resize(21 + trial.Below(20));
    }
    done = true;
    reader.join();
    trial.Require(!torn, "a name was torn");
}

// What is being played, by number, and as the listener would name it.
void Press(LoudDetector& detector, std::uint64_t number) {
    static constexpr int roots[] = {33, 36, 40, 45, 47};
    for (int band = 0; band < 84; ++band) detector.Set(band, false);
    const int root = roots[number / 4 % 5];
    if (number % 4 == 0) return;
    detector.Set(root, true);
    detector.Set(root + (number % 4 == 1 ? 3 : 4), true);
    detector.Set(root + 7, true);
    if (number % 4 == 3) detector.Set(root + 10, true);
}
constexpr std::uint64_t pressings = 20;

void TryListener(Trial& trial) {
    LoudDetector detector;
    QuietOwner owner;
    TNoteRecorder recorder;
    recorder.Attach(&detector);
    recorder.Activate(0);
    recorder.sendProgramChange = false;
    auto* const listener = new TChordsListener(&owner, 1000);  // an update in each frame
    recorder.AddOutput(listener);
    listener->setDelay(0);
    std::set<std::string, std::less<>> known = {""};
    for (std::uint64_t number = 0; number < pressings; ++number) {
        Press(detector, number);
        recorder.OnFrame();
        known.emplace(listener->currentChord().view());
    }
    trial.Require(known.size() > pressings / 2, "the chords have no names of their own");

    std::atomic<bool> done{false}, foreign{false};
    std::atomic<long> reads{0};
    std::thread reader([&] {
        while (!done.load(std::memory_order_relaxed)) {
            if (known.find(listener->currentChordCopy().view()) == known.end()) foreign = true;
            reads.fetch_add(1, std::memory_order_relaxed);
        }
    });
    std::thread others([&, seed = static_cast<unsigned>(trial.random())] {
        std::minstd_rand random(seed);
        while (!done.load(std::memory_order_relaxed)) {
            if (random() / 16 % 2 == 0) listener->Stop();
            listener->setDelay(random() / 16 % 2001);
            std::this_thread::yield();
        }
    });
    for (long i = 0; i < writesEach / 10 || reads < 1000; ++i) {
        Press(detector, trial.Below(pressings));
        recorder.OnFrame();
    }
    done = true;
    reader.join();
    others.join();
    trial.Require(!foreign, "a chord was read that nobody played");
    // A stop by another thread shows at once, whatever the delay.
    listener->setDelay(0);
    listener->Stop();
    trial.Require(listener->currentChordCopy().empty(), "a chord shows after the stop");
}

void TryChordText(Trial& trial) {
    trial.number % 2 == 0 ? TryRing(trial) : TryListener(trial);
}

const Registered tables({"THR-2",
                         "no event mixes two settings, and a take stays paired, whatever changes when", inAll,
                         1000, 25, 60, TryMappings});
const Registered texts({"THR-4", "each chord text read is one that was written", inAll, 200, 1, 60,
                        TryChordText});

}  // namespace
