// Days of sound: the sample clock past the edges of 32 bits, with notes across each.
#include <algorithm>

#include "torture/model/side_by_side.h"

namespace {

constexpr float rates[] = {44100, 48000, 96000, 22050};
constexpr int edgeBits[] = {32, 31, 33};  // where counts of samples would be cut off, first of all

void TryEdge(Trial& trial) {
    const std::size_t which = trial.number % std::size(rates);
    const std::uint64_t edge = std::uint64_t{1} << edgeBits[trial.number / std::size(rates)];
    const float rate = rates[which];
    const auto half = static_cast<std::uint64_t>(rate) / 2;
    SideBySide both(trial, {which != 1, which == 3, rate});
    both.Set(89, 1);
    both.Record(true);
    both.Play(SomeAudio(trial, 5000, rate));
    for (std::uint64_t left = 1; left > 0;) {
        left = edge - half - both.model.totalSamples;
        both.PlayFrames(static_cast<std::int32_t>(std::min<std::uint64_t>(1 << 20, left)));
    }
    const std::uint64_t before = both.notes;
    while (both.model.totalSamples < edge + half) {
        std::vector<float> music;
        while (music.empty() || music[music.size() / 2] == 0)  // not the silent kind
            music = SomeAudio(trial, static_cast<std::size_t>(rate / 4), rate);
        for (std::size_t at = 0; at < music.size();) {
            const std::size_t length = std::min<std::size_t>(1 + trial.Below(3000), music.size() - at);
            const auto from = music.begin() + static_cast<std::ptrdiff_t>(at);
            both.Play({from, from + static_cast<std::ptrdiff_t>(length)});
            at += length;
        }
    }
    trial.Require(both.notes > before, "no notes across the edge");
    both.Record(false);
    both.CompareState();
    Trial::Figure("notes across an edge", static_cast<double>(both.notes - before));
}

const Registered edges({"MID-4", "notes across the edges of a 32-bit clock are dated as told",
                        inRelease | inAddress, std::size(edgeBits) * std::size(rates), 1, 600, TryEdge});

}  // namespace
