// What crosses from one thread to another without a lock of its own: settings beside the audio thread, the
// chord's name beside its writer.
#include <gtest/gtest.h>

#include <atomic>
#include <set>
#include <thread>

#include "delivery/rt_midi_out.h"
#include "delivery/rt_recording.h"
#include "harmony/chords_listener.h"
#include "tests/delivery/fakes.h"
#include "tests/support/devices.h"
#include "tests/support/trial.h"

namespace {

struct Mapping {
    std::int32_t transpose, channel, velocity;
};
// No two share a channel, a velocity or, for the bands below, a note.
constexpr Mapping mappings[] = {{0, 0, 100}, {30, 5, 40}, {-20, 11, 77}};
constexpr int lowestBand = 40, highestBand = 49;

// Whether note and velocity are those of the channel's mapping. In a take, velocities are scaled.
bool IsWhole(std::uint32_t message, bool scaled) {
    const std::uint32_t kind = message & 0xF0U;
    const auto note = static_cast<std::int32_t>(message >> 8 & 127U);
    const auto velocity = static_cast<std::int32_t>(message >> 16 & 127U);
    for (const Mapping& mapping : mappings) {
        if (static_cast<std::uint32_t>(mapping.channel) != (message & 15U)) continue;
        const std::int32_t band = note - mapping.transpose - 24;
        return kind == 0xC0U ||
               (band >= lowestBand && band <= highestBand &&
                (kind == 0x80U ? velocity == 0 : kind == 0x90U && (scaled || velocity == mapping.velocity)));
    }
    return false;
}

TEST(Handoff, NoEventMixesTwoSettingsAndATakeStaysPaired) {
    RunTrials({10, 5}, [](Trial& trial) {
        static FakeDevices& devices = *new FakeDevices;
        static std::atomic<long> mixed{0};
        devices.keepsLines = false;
        devices.judge = [](std::uint32_t message) {
            if (!IsWhole(message, false)) ++mixed;
        };
        SubstituteMidiOut(&devices);
        Bands bands;
        TNoteRecorder& recorder = bands.recorder;
        recorder.sendProgramChange = false;
        recorder.ChangeMapping(mappings[0].transpose, mappings[0].channel, mappings[0].velocity);
        auto* const recording = new TRTRecording;
        for (TNoteOut* const output : std::initializer_list<TNoteOut*>{new TRTMidiOut(0), recording}) {
            recorder.AddOutput(output);  // the recorder's from here on
            output->Start();
        }
        std::atomic<bool> done{false};
        std::thread audio([&, random = std::minstd_rand(static_cast<unsigned>(trial.random()))]() mutable {
            for (long frame = 0; frame < 1000 || !done.load(std::memory_order_relaxed); ++frame) {
                for (int band = lowestBand; band <= highestBand; ++band)
                    if (random() / 16 % 4 == 0) bands.detector.Set(band, !bands.detector.on[band]);
                recorder.OnFrame();
            }
        });
        for (long i = 0; i < 5000; ++i) {
            const Mapping& next = mappings[trial.Below(3)];
            recorder.ChangeMapping(next.transpose, next.channel, next.velocity);
            if (i % 16 == 0) recorder.SetProgram(static_cast<std::int32_t>(trial.Below(128)));
        }
        done = true;
        audio.join();
        recording->Stop();
        EXPECT_EQ(mixed, 0);
        EXPECT_GT(devices.sent, 0);
        std::uint32_t open = 0;
        for (const TRecordEvent& event : recording->GetTake()) {
            ASSERT_TRUE(IsWhole(event.message, true)) << std::hex << event.message;
            const std::uint32_t kind = event.message & 0xF0U;
            if (kind == 0xC0U) continue;
            ASSERT_EQ(open, kind == 0x80U ? event.message & 0xFF0FU : 0U) << "each on, then its own off";
            open = kind == 0x90U ? event.message & 0xFF0FU : 0;
        }
        EXPECT_EQ(open, 0U);
    });
}

class QuietOwner : public IChordOwner {
public:
    float GetSampleRate() const override { return 44100; }
    void ChordChanged() override {}
};

// What is being played, by number.
void Press(Bands& bands, std::uint64_t number) {
    constexpr int roots[] = {33, 36, 40, 45, 47};
    for (int band = 0; band < 84; ++band) bands.detector.Set(band, false);
    const int root = roots[number / 4 % 5];
    for (const int above : {0, number % 4 == 1 ? 3 : 4, 7, number % 4 == 3 ? 10 : 0})
        bands.detector.Set(root + above, number % 4 != 0);
    bands.recorder.OnFrame();
}

TEST(Handoff, EachChordNameThatIsReadWasWritten) {
    RunTrials({4, 1}, [](Trial& trial) {
        Bands bands;
        QuietOwner owner;
        auto* const listener = new TChordsListener(&owner, 1000);  // an update in each frame
        bands.recorder.AddOutput(listener);
        listener->setDelay(0);
        std::set<std::string, std::less<>> known = {""};
        for (std::uint64_t number = 0; number < 20; ++number) {
            Press(bands, number);
            known.emplace(listener->currentChord().view());
        }
        ASSERT_GT(known.size(), 10U);
        std::atomic<bool> done{false}, foreign{false};
        std::atomic<long> reads{0};
        std::thread reader([&] {
            for (; !done.load(std::memory_order_relaxed); ++reads)
                if (known.find(listener->currentChordCopy().view()) == known.end()) foreign = true;
        });
        std::thread others([&, random = std::minstd_rand(static_cast<unsigned>(trial.random()))]() mutable {
            while (!done.load(std::memory_order_relaxed)) {
                if (random() / 16 % 2 == 0) listener->Stop();
                listener->setDelay(random() / 16 % 2001);
                std::this_thread::yield();
            }
        });
        for (long i = 0; i < 10000 || reads < 1000; ++i) Press(bands, trial.Below(20));
        done = true;
        reader.join();
        others.join();
        EXPECT_FALSE(foreign) << "a chord was read that nobody played";
        listener->setDelay(0);
        listener->Stop();
        EXPECT_TRUE(listener->currentChordCopy().empty()) << "a stop by another thread shows at once";
    });
}

}  // namespace
