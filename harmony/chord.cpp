#include "harmony/chord.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::uint32_t lowestRealPitch = classCount;  // pitches that all lie below are classes

// Counts a class; `classes` counts those seen.
template <typename Count>
void CountClass(std::uint16_t (&histogram)[classCount], Count& classes, std::uint32_t value) {
    std::uint16_t& count = histogram[value % classCount];
    if (count == 0) ++classes;
    ++count;
}

std::int32_t Distance(std::uint32_t from, std::uint32_t to) {
    return static_cast<std::int32_t>(to - from);
}

std::int32_t ClassDistance(std::uint32_t from, std::uint32_t to) {
    return classAbove(static_cast<std::int16_t>(from % classCount),
                      static_cast<std::int16_t>(to % classCount), 1);
}

}  // namespace

TChord::TChord(std::span<const std::uint32_t> chordPitches, std::pmr::memory_resource* memory)
    : pitches(chordPitches.begin(), chordPitches.end(), memory),
      tones(memory),
      intervalRows(memory),
      longText(memory),
      shortText(memory) {
    dropRepeats();
    valid = !chordPitches.empty();
}

TChord::TChord(const TNoteList& list, std::int32_t limit) : TChord({}, NoteMemory()) {
    const std::size_t size = limit < 0 ? list.size() : std::min(list.size(), static_cast<std::size_t>(limit));
    notes = std::make_unique<TNotes>();
    notes->ReserveNotes(size);
    for (std::size_t index = 0; index < size; ++index) {
        notes->AddCopy(*list[index]);
        pitches.push_back(list[index]->pitch);
    }
    dropRepeats();
    valid = !list.empty();
}

void TChord::dropRepeats() {
    pitches.erase(std::unique(pitches.begin(), pitches.end()), pitches.end());
    noteCount = static_cast<std::int32_t>(pitches.size());
}

void TChord::prepare() {
    if (prepared) return;
    tones.resize(pitches.size());
    for (std::uint32_t index = 0; index < tones.size(); ++index) tones[index] = {pitches[index], index, 0};
    if (!pitchClassMode)
        pitchClassMode = std::all_of(pitches.begin(), pitches.end(),
                                     [](std::uint32_t pitch) { return pitch < lowestRealPitch; });
    if (!pitchClassMode && !sorted) sortTones();
    for (std::uint32_t position = 0; position < tones.size(); ++position)
        tones[tones[position].index].sortedPosition = position;
    countPitches();
    sorted = true;
    prepared = true;
}

// The index decides between equal pitches, which makes the order that of a stable sort, without its memory.
void TChord::sortTones() {
    std::sort(tones.begin(), tones.end(), [](const TChordTone& a, const TChordTone& b) {
        return a.pitch != b.pitch ? a.pitch < b.pitch : a.index < b.index;
    });
}

void TChord::countPitches() {
    for (std::size_t index = 0; index < tones.size(); ++index) {
        if (index > 0 && tones[index].pitch == tones[index - 1].pitch) ++unisonCount;
        CountClass(pitchClassHistogram, pitchClassCount, tones[index].pitch);
    }
    distinctPitchCount = noteCount - unisonCount;
}

void TChord::computeIntervals() {
    prepare();
    if (hasIntervals) return;
    intervalRows.reserve(static_cast<std::size_t>(noteCount) * static_cast<std::size_t>(noteCount) / 2);
    for (std::size_t low = 0; low < tones.size(); ++low)
        for (std::size_t high = low + 1; high < tones.size(); ++high) {
            const std::int32_t value = pitchClassMode ? ClassDistance(tones[low].pitch, tones[high].pitch)
                                                      : Distance(tones[low].pitch, tones[high].pitch);
            intervalRows.push_back(static_cast<std::int16_t>(value));
            countInterval(static_cast<std::uint32_t>(value), high == low + 1);
        }
    hasIntervals = true;
}

// Neighbours make the span: their classes' distances add up, and so do those of real pitches.
void TChord::countInterval(std::uint32_t value, bool adjacent) {
    if (value >= 1 && value % classCount == 0) ++octaveCount;
    CountClass(intervalClassHistogram, intervalClassCount, value);
    if (!adjacent) return;
    CountClass(adjacentClassHistogram, adjacentClassCount, value);
    if (value > classCount) ++wideStepCount;
    span = static_cast<std::int16_t>(span + static_cast<std::int16_t>(value));
}

TChordInfo TChord::analyse() {
    if (!valid || !recognise()) return {};
    if (!analysed) writeTexts();
    analysed = true;
    return info;
}

bool TChord::recognise() {
    prepare();
    computeIntervals();
    if (info.ok) return true;
    if (noteCount > mostTones || noteCount < 1 || pitchClassCount == classCount) return false;

    TChordInfo result;
    result.rootIndex = findRoot();
    result.majorBelowMinor = markIntervals(result.rootIndex);
    result.noThird = !degreePresent[2];
    result.bothThirds = semitonePresent[3] && semitonePresent[4];
    classify(result);
    if (result.isTriad || result.isSeventh) findBassDegree(result);
    if (mayRetryWithoutLowest(result)) retry(result, 1);
    if (mayRetryWithoutHighest(result)) retry(result, 0);

    result.ok = true;
    info = result;
    knownChord = info.knownChord;
    return true;
}

void TChord::findBassDegree(TChordInfo& result) const {
    if (rootIsBass) return;
    result.hasForeignBass = true;
    const std::int32_t above = classCount - distance(0, result.rootIndex) % classCount;
    result.bassDegree = static_cast<std::uint16_t>(degreeOf(static_cast<std::int16_t>(above), false));
}

// One retry inside another would go on taking notes away until something is found that nobody played.
bool TChord::mayRetryWithoutLowest(const TChordInfo& result) const {
    return !isRetry && result.type == ctNone && pitchClassCount >= 4 && !rootIsBass;
}

// The highest note stays where it is a fifth above the root, or its only third.
bool TChord::mayRetryWithoutHighest(const TChordInfo& result) const {
    if (isRetry || result.type != ctNone || noteCount < 3) return false;
    const std::int32_t top = noteCount - 1;
    const std::int16_t degree =
        result.rootIndex < top ? degreeOf(distance(result.rootIndex, top), false) : std::int16_t{0};
    return degree != 4 && (degree != 2 || result.bothThirds);
}

// Analyses all tones but one, beginning with `first`. Only the type is taken over: the root stays.
void TChord::retry(TChordInfo& result, std::int32_t first) const {
    std::array<std::uint32_t, mostTones> others{};
    const std::size_t count = tones.size() - 1;
    for (std::size_t tone = 0; tone < count; ++tone)
        others[tone] = tones[static_cast<std::size_t>(first) + tone].pitch;
    TChord reduced({others.data(), count}, pitches.get_allocator().resource());
    reduced.isRetry = true;
    if (!reduced.recognise() || reduced.info.type == ctNone) return;
    result.type = reduced.info.type;
    result.fromReducedSet[0] = true;
    result.fromReducedSet[1] = true;
}

TChordForm chordOfPitches(std::uint32_t, std::int32_t count, const std::uint32_t* pitches,
                          const std::uint32_t* velocities, const std::uint32_t* starts,
                          const std::uint32_t* durations) {
    constexpr std::uint8_t program = 0, layer = 1, channel = 0;
    const auto score = std::make_unique<TNotes>();
    score->ReserveNotes(static_cast<std::size_t>(std::max(count, 0)));  // which keeps their order
    for (std::int32_t i = 0; i < count; ++i)
        score->AddNote(starts[i], starts[i] + durations[i], static_cast<std::uint8_t>(pitches[i]),
                       static_cast<std::int32_t>(velocities[i]), program, layer, channel);
    TChord chord(score->notes, -1);
    chord.analyse();
    return chordFormOf(std::move(chord));
}

TChordForm chordOfPitches(std::span<const std::uint32_t> pitches) {
    std::array<std::byte, 2048> area;  // of which twelve notes with both retries take half
    std::pmr::monotonic_buffer_resource memory(area.data(), area.size());
    TChord chord(pitches, &memory);
    chord.recognise();
    return chordFormOf(std::move(chord));
}
