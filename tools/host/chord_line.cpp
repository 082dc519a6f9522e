#include "tools/host/chord_line.h"

#include <algorithm>
#include <memory>

#include "harmony/chord.h"
#include "harmony/chord_namer.h"
#include "tools/host/note_list.h"

namespace {

constexpr std::int64_t looksPerSecond = 10;
constexpr std::size_t mostNotes = 11;  // what the namer is sure to name
constexpr int lowestNote = 24;         // MIDI; the pitch class of a pitch counts from here

}  // namespace

std::string ChordName(TChordNamer& namer, const std::vector<int>& notes) {
    std::vector<std::uint32_t> pitches;
    for (const int note : notes)
        if (note >= lowestNote) pitches.push_back(static_cast<std::uint32_t>(note - lowestNote));
    if (pitches.empty()) return {};
    std::sort(pitches.begin(), pitches.end());
    if (pitches.size() > mostNotes) pitches.resize(mostNotes);
    const std::vector<std::uint32_t> same(pitches.size(),
                                          100);  // it ignores velocity, start and duration
    const TChordForm form = namer.chordOfPitches(150, static_cast<std::int32_t>(pitches.size()),
                                                 pitches.data(), same.data(), same.data(), same.data());
    return std::string(chordText(form).view());
}

std::vector<ChordChange> ChordLine(const Take& take) {
    std::vector<ChordChange> line;
    const std::vector<HeardNote> notes = PairNotes(take);
    const auto namer = std::make_unique<TChordNamer>();
    std::size_t first = 0;  // notes before it have ended
    for (std::int64_t look = 1; look * take.rate <= take.length * looksPerSecond; ++look) {
        const std::int64_t sample = look * take.rate / looksPerSecond;
        std::vector<int> sounding;
        while (first < notes.size() && notes[first].end <= sample) ++first;
        for (std::size_t i = first; i < notes.size() && notes[i].begin <= sample; ++i)
            if (notes[i].end > sample) sounding.push_back(notes[i].pitch);
        const std::string name = ChordName(*namer, sounding);
        if (name != (line.empty() ? std::string() : line.back().name))
            line.push_back({static_cast<double>(look) / looksPerSecond, name});
    }
    return line;
}
