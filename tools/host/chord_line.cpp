#include "tools/host/chord_line.h"

#include <algorithm>

#include "harmony/chord.h"
#include "tools/host/note_list.h"

namespace {

constexpr std::int64_t looksPerSecond = 10;
constexpr std::size_t mostNotes = 11;  // what the namer is sure to name
constexpr int lowestNote = 24;         // MIDI; the pitch class of a pitch counts from here

}  // namespace

std::string ChordName(const std::vector<int>& notes) {
    std::vector<std::uint32_t> pitches;
    for (const int note : notes)
        if (note >= lowestNote) pitches.push_back(static_cast<std::uint32_t>(note - lowestNote));
    if (pitches.empty()) return {};
    std::sort(pitches.begin(), pitches.end());
    if (pitches.size() > mostNotes) pitches.resize(mostNotes);
    return std::string(chordText(chordOfPitches(pitches)).view());
}

std::vector<ChordChange> ChordLine(const Take& take) {
    std::vector<ChordChange> line;
    const std::vector<HeardNote> notes = PairNotes(take);
    std::size_t first = 0;  // notes before it have ended
    for (std::int64_t look = 1; look * take.rate <= take.length * looksPerSecond; ++look) {
        const std::int64_t sample = look * take.rate / looksPerSecond;
        std::vector<int> sounding;
        while (first < notes.size() && notes[first].end <= sample) ++first;
        for (std::size_t i = first; i < notes.size() && notes[i].begin <= sample; ++i)
            if (notes[i].end > sample) sounding.push_back(notes[i].pitch);
        const std::string name = ChordName(sounding);
        if (name != (line.empty() ? std::string() : line.back().name))
            line.push_back({static_cast<double>(look) / looksPerSecond, name});
    }
    return line;
}
