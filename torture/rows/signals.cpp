// Audio as no musician plays it: nothing of it stays in the plug-in, and none of it costs more than music.
#include <ctime>

#include "base/float_environment.h"
#include "torture/row.h"
#include "torture/rows/plug_in.h"
#include "torture/rows/samples.h"

namespace {

constexpr std::int32_t rate = 48000;
constexpr std::size_t block = 512;
constexpr std::uint64_t signalCount = 24;
constexpr std::size_t minute = std::size_t{60} * rate;

// Sample `i` of signal `kind`. The last two are silences between tones, see TrySilence.
template <typename Sample>
Sample SampleOf(std::uint64_t kind, std::size_t i, std::mt19937_64& random) {
    using Limits = std::numeric_limits<Sample>;
    const Sample sign = i % 2 == 0 ? Sample(1) : Sample(-1);
    const auto square = [&](std::size_t half) { return i / half % 2 == 0 ? Sample(1) : Sample(-1); };
    switch (kind) {
        case 0: return Limits::quiet_NaN();
        case 1: return Limits::signaling_NaN();
        case 2: return Limits::infinity();
        case 3: return -Limits::infinity();
        case 4: return sign * Limits::infinity();
        case 5: return Limits::max();
        case 6: return Limits::lowest();
        case 7: return sign * Limits::max();
        case 8: return Sample(1e10);
        case 9: return Sample(-1e10);
        case 10: return Sample(1.0923);  // 32769: wraps
        case 11: return Sample(-1.0923);
        case 12: return sign * Sample(1.0923);
        case 13: return random() % 100 < 50 ? Sample(-32768.5) / Sample(30000) : Sample(0);
        case 14: return Sample(-32768.5) / Sample(30000);
        case 15: return Limits::denorm_min();
        case 16: return Limits::min() * UsualSample<Sample>(random);
        case 17: return Sample(1);
        case 18: return Sample(-1);
        case 19: return sign;
        case 20: return square(54) * Sample(32767.5) / Sample(30000);    // 444 Hz
        case 21: return square(1000) * Sample(32767.5) / Sample(30000);  // 24 Hz
        default: return AnySample<Sample>(random);
    }
}

template <typename Sample>
void Feed(PlugIn& plugIn, Door door, std::vector<Sample> audio) {
    std::vector<Sample> out(audio.size());
    plugIn.Feed(door, audio.data(), out.data(), static_cast<std::int32_t>(audio.size()));
}

bool IsFinite(PlugIn& plugIn) {
    const TRealTimeTS107& detector = plugIn.Object().detector;
    for (std::int32_t band = 0; band < detector.numBands; ++band)
        for (const float word : {detector.energy[band], detector.stateA[band], detector.stateB[band]})
            if (!std::isfinite(word)) return false;
    return true;
}

// Detection is at its beginning again once a block was silent: from there on, all is as in a fresh instance.
void RequireFresh(Trial& trial, PlugIn& used) {
    const std::vector<float> tone = Tones({57, 64, 73}, 1, rate), pause(block);
    PlugIn fresh(rate);
    fresh.Play(Tones({69}, 0.1, rate));  // the first start of all tells the host the program
    for (PlugIn* const plugIn : {&fresh, &used}) {
        plugIn->Play(pause);
        plugIn->events.clear();
    }
    const std::int64_t begin = used.clock - fresh.clock;
    fresh.Play(tone);
    used.Play(tone);
    trial.Require(fresh.events.size() >= 3, "a chord of three gives no notes");
    trial.Require(used.events == Later(fresh.events, begin), "the notes are not those of a fresh instance");
}

// Without a pause, what came before rings on for a while: the lowest band falls by 35 dB a second. Three
// seconds later nothing of it decides any more.
void RequireRecovered(Trial& trial, PlugIn& used) {
    const std::vector<float> tone = Tones({57, 64, 73}, 3, rate);
    PlugIn fresh(rate);
    fresh.Play(tone);
    used.Play(tone);
    trial.Require(IsFinite(used), "what is no number stays in the detector");
    trial.Require(used.Sounding() == fresh.Sounding(), "other bands sound than in a fresh instance");
}

template <typename Sample>
void TrySignalOf(Trial& trial, Door door, std::uint64_t kind) {
    PlugIn plugIn(rate);
    std::vector<Sample> in(block), out(block), due(block);
    std::vector<short> heard(block);
    for (std::size_t at = 0; at < minute; at += block) {
        for (std::size_t i = 0; i < block; ++i) {
            const Sample sample = in[i] = SampleOf<Sample>(kind, at + i, trial.random);
            heard[i] = Converted(sample);
            due[i] = door == accumulating ? Sample(0.5) + sample : sample;
        }
        std::fill(out.begin(), out.end(), Sample(0.5));
        plugIn.Feed(door, in.data(), out.data(), static_cast<std::int32_t>(block));
        trial.Require(plugIn.Object().samples == heard, "a sample has another 16-bit value");
        // A sum with what is no number is none either; which, the processor chooses.
        for (std::size_t i = 0; i < block; ++i)
            if (door != accumulating || due[i] == due[i] || out[i] == out[i])
                trial.Require(std::memcmp(&out[i], &due[i], sizeof(Sample)) == 0, "the output differs");
    }
    trial.Require(IsFinite(plugIn), "what is no number reached the detector");
    RequireRecovered(trial, plugIn);
    RequireFresh(trial, plugIn);
}

// Silence between tones for 3 s less one sample leaves the further outputs open; the sample that is missing
// closes them.
template <typename Sample>
void TrySilence(Trial& trial, Door door, bool whole) {
    PlugIn plugIn(rate);
    std::vector<Sample> tone;  // of no whole number of periods, or it would add up to silence
    for (const float sample : Tones({69}, 0.5071, rate)) tone.push_back(static_cast<Sample>(sample));
    while (plugIn.clock < static_cast<std::int64_t>(minute)) {
        Feed(plugIn, door, tone);
        trial.Require(!plugIn.Object().outputsIdle, "a tone does not open the outputs");
        std::size_t left = std::size_t{3} * rate - (whole ? 0 : 1);
        while (left > 0) {
            trial.Require(!plugIn.Object().outputsIdle, "closed before three seconds were over");
            const std::size_t count = std::min<std::size_t>(left, 1 + trial.Below(5000));
            Feed(plugIn, door, std::vector<Sample>(count));
            left -= count;
        }
        trial.Require(plugIn.Object().outputsIdle == whole,
                      "3 s close the outputs, and a sample less does not");
    }
    trial.Require(IsFinite(plugIn), "what is no number reached the detector");
    RequireRecovered(trial, plugIn);
    RequireFresh(trial, plugIn);
}

template <typename Sample>
void TrySignalAt(Trial& trial, Door door, std::uint64_t kind) {
    if (kind < signalCount) return TrySignalOf<Sample>(trial, door, kind);
    TrySilence<Sample>(trial, door, kind > signalCount);
}

void TrySignal(Trial& trial) {
    const auto door = static_cast<Door>(trial.number % doorCount);
    const std::uint64_t kind = trial.number / doorCount;
    door == doubleReplacing ? TrySignalAt<double>(trial, door, kind) : TrySignalAt<float>(trial, door, kind);
}

const Registered signalRow({"PRO-7", "passes any signal as it is, and keeps nothing of it",
                            inRelease | inAddress, (signalCount + 2) * doorCount, 1, 60, TrySignal});

// --- PRO-8 ---

constexpr std::size_t longBlock = 65536;
constexpr int blocksEach = 500;

double ThreadSeconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

template <typename Sample>
double TimeOf(PlugIn& plugIn, Door door, std::vector<Sample>& in, std::vector<Sample>& out) {
    const double begin = ThreadSeconds();
    plugIn.Feed(door, in.data(), out.data(), static_cast<std::int32_t>(in.size()));
    return ThreadSeconds() - begin;
}

double Median(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2),
                     values.end());
    return values[values.size() / 2];
}

// After a single sample the resonators decay past the smallest normal number within the block. The two kinds
// of block take turns, so that whatever else the machine does falls on both.
template <typename Sample>
void TryDecayOf(Trial& trial, Door door) {
    PlugIn decaying(rate), busy(rate);
    std::vector<Sample> click(longBlock), noise(longBlock), out(longBlock);
    click[0] = 1;
    std::vector<double> clickTimes, noiseTimes;
    for (int count = 0; count < blocksEach; ++count) {
        for (Sample& sample : noise) sample = UsualSample<Sample>(trial.random);
        clickTimes.push_back(TimeOf(decaying, door, click, out));
        noiseTimes.push_back(TimeOf(busy, door, noise, out));
        std::fill(out.begin(), out.end(), Sample(0));
    }
    const double ratio = Median(clickTimes) / Median(noiseTimes);
    Trial::Figure("decay over noise", ratio);
    trial.Require(ratio <= 1.2, "a decay costs " + std::to_string(ratio) + " times what noise does");
}

// In a host whose threads flush denormals, or in one whose threads do not.
template <typename Work>
void AsHost(bool flushes, Work work) {
    if (!flushes) return work();
    const FlushToZero word;
    work();
}

std::vector<SentEvent> EventsOf(const std::vector<float>& audio) {
    PlugIn plugIn(rate);
    plugIn.Play(audio);
    return plugIn.TakenEvents();
}

void TryDecay(Trial& trial) {
    const auto door = static_cast<Door>(trial.number % doorCount);
    AsHost(trial.number >= doorCount, [&] {
        door == doubleReplacing ? TryDecayOf<double>(trial, door) : TryDecayOf<float>(trial, door);
    });
    std::vector<float> audio = RandomMusic(trial.random, 10, rate);
    for (std::size_t i = 0; i < audio.size(); ++i)  // tones that end in denormals
        if (i / rate % 2 == 1) audio[i] *= 1e-38F;
    std::vector<SentEvent> usual, flushed;
    AsHost(false, [&] { usual = EventsOf(audio); });
    AsHost(true, [&] { flushed = EventsOf(audio); });
    trial.Require(!usual.empty() && usual == flushed, "the host's flushing of denormals changes the events");
}

const Registered decayRow({"PRO-8", "costs no more while sounds decay below the smallest number", inRelease,
                           2 * doorCount, 1, 120, TryDecay});

}  // namespace
