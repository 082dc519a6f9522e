// Free audio in any blocks: a block that adds up to zero is silence, be it ever so loud.
#include <algorithm>

#include "torture/model/side_by_side.h"

namespace {

constexpr float rate = 44100;

// Music with gaps, single zero samples, and stretches in which each sample is taken back by the next.
std::vector<float> Piece(Trial& trial) {
    std::vector<float> piece;
    while (piece.size() < 60000) {
        std::vector<float> part = SomeAudio(trial, 1 + trial.Below(15000), rate);
        if (trial.OneIn(3))
            for (std::size_t i = 0; i + 1 < part.size(); i += 2) part[i + 1] = -part[i];
        if (trial.OneIn(3))
            for (std::size_t i = 0; i < part.size(); i += 1 + trial.Below(50)) part[i] = 0;
        piece.insert(piece.end(), part.begin(), part.end());
    }
    return piece;
}

std::size_t SomeLength(Trial& trial) {
    constexpr std::size_t primes[] = {2, 3, 7, 31, 127, 499, 1009, 4099, 30011};
    switch (trial.Below(5)) {
        case 0: return trial.Below(2);
        case 1: return primes[trial.Below(std::size(primes))];
        case 2: return 1 + trial.Below(100);
        case 3: return 64U << trial.Below(6);
        default: return trial.OneIn(30) ? 65537 + trial.Below(100000) : 1 + trial.Below(9000);
    }
}

void TryPartition(Trial& trial) {
    SideBySide both(trial, KindOfBatch(trial, 20));
    both.Call(effSetSampleRate, 0, 0, {}, rate);
    if (trial.OneIn(2)) both.Set(89, 1);
    if (trial.OneIn(2)) both.Record(true);
    const std::vector<float> piece = Piece(trial);
    for (std::size_t at = 0; at < piece.size();) {
        const std::size_t length = std::min(SomeLength(trial), piece.size() - at);
        const auto from = piece.begin() + static_cast<std::ptrdiff_t>(at);
        both.Play({from, from + static_cast<std::ptrdiff_t>(length)},
                  static_cast<SideBySide::Door>(trial.Below(3)));
        if (trial.OneIn(60))  // up to four seconds, in pieces: three stop the further outputs
            for (std::uint64_t pieces = 1 + trial.Below(4); pieces > 0; --pieces)
                both.PlayFrames(static_cast<std::int32_t>(trial.Below(45000)));
        at += length;
    }
    both.CompareState();
    Trial::Figure("notes in a case", static_cast<double>(both.notes));
}

const Registered partition({"PRO-2", "any audio in any blocks gives the notes that the silence rule says",
                            inRelease | inAddress, 10000, 20, 60, TryPartition, 20});

}  // namespace
