#pragma once
#include "harmony/chord.h"
#include "tests/support/test.h"

using Pitches = std::vector<std::uint32_t>;

// A score of notes that all sound together, in the order given.
inline std::unique_ptr<TNotes> Together(const Pitches& pitches) {
    auto score = std::make_unique<TNotes>();
    score->ReserveNotes(pitches.size());
    for (const std::uint32_t pitch : pitches)
        score->AddNote(100, 200, static_cast<std::uint8_t>(pitch), -624, 0, 1, 1);
    return score;
}

inline TChordForm FormOf(const Pitches& pitches) {
    const Pitches alike(pitches.size(), 100);
    return chordOfPitches(150, static_cast<std::int32_t>(pitches.size()), pitches.data(), alike.data(),
                          alike.data(), alike.data());
}

inline std::string NameOf(const Pitches& pitches) {
    return std::string(chordText(FormOf(pitches)).view());
}

// Texts as one number: FNV-1a, 32 bits, each text with an end of its own.
struct TextDigest {
    void Add(std::string_view text) {
        for (const char character : text) value = (value ^ static_cast<unsigned char>(character)) * 16777619U;
        value = (value ^ 0xFFU) * 16777619U;
    }
    std::uint32_t value = 2166136261U;
};
