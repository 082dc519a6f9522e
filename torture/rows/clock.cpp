// Days of sound: the sample clock past the edges of 32 bits, with notes across each.
#include "torture/model/side_by_side.h"

namespace {

void TryEdges(Trial& trial) {
    constexpr float rates[] = {44100, 48000, 96000, 22050};
    const float rate = rates[trial.number];
    SideBySide both(trial, {trial.number != 1, trial.number == 3, rate});
    both.Set(89, 1);
    both.Record(true);
    std::uint64_t across = 0;
    for (const int power : {31, 32, 33}) {
        const std::uint64_t edge = std::uint64_t{1} << power;
        const std::uint64_t begin = edge - static_cast<std::uint64_t>(rate) / 2;
        while (both.model.totalSamples < begin)
            both.PlayFrames(
                static_cast<std::int32_t>(std::min<std::uint64_t>(1 << 20, begin - both.model.totalSamples)));
        const std::uint64_t notes = both.notes;
        while (both.model.totalSamples < edge + static_cast<std::uint64_t>(rate) / 2) {
            std::vector<float> music;
            while (music.empty() || music[music.size() / 2] == 0)
                music = SomeAudio(trial, static_cast<std::size_t>(rate / 4), rate);
            for (std::size_t at = 0; at < music.size();) {
                const std::size_t length = std::min(1 + trial.Below(3000), music.size() - at);
                const auto from = music.begin() + static_cast<std::ptrdiff_t>(at);
                both.Play({from, from + static_cast<std::ptrdiff_t>(length)});
                at += length;
            }
        }
        trial.Require(both.notes > notes, "no notes across the edge");
        across += both.notes - notes;
        both.CompareState();
    }
    Trial::Figure("notes across edges", static_cast<double>(across));
}

const Registered edges({"MID-4", "notes across the edges of a 32-bit clock are dated as told",
                        inRelease | inAddress, 4, 1, 600, TryEdges});

}  // namespace
