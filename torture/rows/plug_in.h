#pragma once
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <random>
#include <set>
#include <utility>
#include <vector>

#include "module/plugin_entry.h"
#include "plugin/gui_plugin.h"
#include "tests/support/tones.h"
#include "vst2/records.h"

// One event as a host got it.
struct SentEvent {
    std::int64_t at;  // on the host's sample clock
    unsigned char message[3];
    bool operator==(const SentEvent&) const = default;
};

// The ways into the plug-in.
enum Door { accumulating, replacing, doubleReplacing, doorCount };

// The plug-in, linked in, with a quiet host of its own: as many as are wanted live side by side.
class PlugIn {
public:
    explicit PlugIn(std::int32_t rate = 44100) : sampleRate(rate) {
        opening = this;
        effect = OpenPlugin(Callback);
        opening = nullptr;
        if (effect != nullptr) effect->resvd1 = reinterpret_cast<std::intptr_t>(this);  // the host's word
    }
    ~PlugIn() {
        if (effect != nullptr) Call(effClose);
    }
    PlugIn(const PlugIn&) = delete;
    PlugIn& operator=(const PlugIn&) = delete;

    std::intptr_t Call(std::int32_t opcode, std::int32_t index = 0, std::intptr_t value = 0,
                       void* ptr = nullptr, float opt = 0) {
        return effect->dispatcher(effect, opcode, index, value, ptr, opt);
    }
    void Feed(Door door, float** in, float** out, std::int32_t frames) {
        (door == accumulating ? effect->process : effect->processReplacing)(effect, in, out, frames);
        clock += std::max(frames, 0);
    }
    void Feed(Door, double** in, double** out, std::int32_t frames) {
        effect->processDoubleReplacing(effect, in, out, frames);
        clock += std::max(frames, 0);
    }
    // One block, by the pointers to the samples themselves.
    template <typename Sample>
    void Feed(Door door, Sample* in, Sample* out, std::int32_t frames) {
        Feed(door, &in, &out, frames);
    }
    // Audio in blocks of `block` samples, in place.
    void Play(std::vector<float> audio, std::size_t block = 512) {
        for (std::size_t at = 0; at < audio.size(); at += block)
            Feed(replacing, &audio[at], &audio[at],
                 static_cast<std::int32_t>(std::min(block, audio.size() - at)));
    }
    std::vector<SentEvent> TakenEvents() { return std::exchange(events, {}); }
    // Bands that are on, as the detector has them.
    std::set<std::int32_t> Sounding() {
        std::set<std::int32_t> bands;
        for (std::int32_t band = 0; band < Object().detector.numBands; ++band)
            if (Object().detector.bandOn[band]) bands.insert(band);
        return bands;
    }
    CORVAguivst& Object() { return dynamic_cast<CORVAguivst&>(*static_cast<AudioEffect*>(effect->object)); }

    AEffect* effect = nullptr;
    std::vector<SentEvent> events;
    std::int64_t clock = 0;                             // samples handed over before the block in progress
    std::function<std::intptr_t(VstEvents&)> atEvents;  // what the host does with events besides

private:
    static std::intptr_t Callback(AEffect* effect, std::int32_t opcode, std::int32_t, std::intptr_t,
                                  void* ptr, float) {
        PlugIn* const self =
            effect != nullptr && effect->resvd1 != 0 ? reinterpret_cast<PlugIn*>(effect->resvd1) : opening;
        if (opcode == audioMasterVersion) return 2400;
        if (self == nullptr) return 0;
        if (opcode == audioMasterGetSampleRate) return self->sampleRate;
        if (opcode != audioMasterProcessEvents) return 0;
        VstEvents& sent = *static_cast<VstEvents*>(ptr);
        for (std::int32_t i = 0; i < sent.numEvents; ++i) {
            const auto& event = *reinterpret_cast<const VstMidiEvent*>(sent.events[i]);
            SentEvent kept{self->clock + event.deltaFrames, {}};
            std::copy_n(event.midiData, 3, reinterpret_cast<char*>(kept.message));
            self->events.push_back(kept);
        }
        return self->atEvents ? self->atEvents(sent) : 0;
    }
    static inline PlugIn* opening = nullptr;
    std::int32_t sampleRate;
};

// The same events, `samples` later.
inline std::vector<SentEvent> Later(std::vector<SentEvent> events, std::int64_t samples) {
    for (SentEvent& event : events) event.at += samples;
    return events;
}

inline std::vector<float> Tones(const std::vector<int>& notes, double seconds, double rate,
                                double level = 0.2) {
    return Chord(notes, static_cast<std::size_t>(seconds * rate), 0, rate, level);
}

// Chords of one to four notes, 0.1 to 0.6 s each, some with a pause behind them.
inline std::vector<float> RandomMusic(std::mt19937_64& random, double seconds, double rate) {
    std::vector<float> music;
    const auto wanted = static_cast<std::size_t>(seconds * rate);
    while (music.size() < wanted) {
        std::vector<int> chord(1 + random() % 4);
        for (int& note : chord) note = 36 + static_cast<int>(random() % 60);
        const std::vector<float> part = Tones(chord, 0.1 + static_cast<double>(random() % 500) / 1000, rate);
        music.insert(music.end(), part.begin(), part.end());
        if (random() % 4 == 0) music.resize(music.size() + random() % static_cast<std::size_t>(rate / 5));
    }
    music.resize(wanted);
    return music;
}
