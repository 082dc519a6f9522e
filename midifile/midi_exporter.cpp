#include "midifile/midi_exporter.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <memory>

#include "base/truncate.h"
#include "notes/notes.h"

namespace {

constexpr std::int64_t lastTick = std::numeric_limits<std::uint32_t>::max();
constexpr std::size_t namedLayers = 128;
constexpr std::uint8_t lowestNote = 24;      // the MIDI note of pitch 0
constexpr std::uint32_t quarterTicks = 120;  // MIDI ticks of a quarter note
constexpr double minuteMicroseconds = 6e7;
constexpr double minutesPerTick = 7.558578987150416e-7;   // 1 / (22050 * 60), of a score tick
constexpr double secondsPerTick = 4.5351473922902495e-5;  // 1 / 22050, of a score tick
constexpr double ticksPerSecond = 22050.0;
constexpr double perMidiTick = 8.333333333333334e-9;  // 1 / (120 * 1e6): quarter notes a MIDI tick, s a us

// A tempo that differs from the last one written by less than this is no change.
constexpr double tempoRaised = 1.02, tempoLowered = 0.98;

// The quotient, or no number where there is none; cut to an integer, the two come out the same.
double Quotient(double dividend, double divisor) {
    return divisor != 0.0 ? dividend / divisor : std::numeric_limits<double>::quiet_NaN();
}

std::uint32_t PowerOfTwo(unsigned exponent) {
    return exponent < 32 ? std::uint32_t{1} << exponent : 0;
}

// Score ticks in a MIDI tick at a tempo of so many microseconds per quarter note.
double PerTick(std::uint32_t tempo) {
    return tempo * ticksPerSecond * perMidiTick;
}

std::uint8_t Velocity(std::int32_t level) {
    const std::int64_t velocity = (std::int64_t{level} * 30 - 346) / 693 + 127;
    return static_cast<std::uint8_t>(std::clamp<std::int64_t>(velocity, 0, 127));
}

bool GoesOut(const TNote& note) {
    return note.HasFlag(nfIncluded) && !note.HasFlag(nfExcludedA) && !note.HasFlag(nfExcludedB) &&
           note.channel >= 1 && note.channel <= 16;
}

}  // namespace

// Where the walk along the bars stands. `next` is the first bar that the music has not reached.
struct TMidiExporter::TBarWalk {
    TBars::const_iterator next, end;
    double barTicks;             // MIDI ticks of a bar
    double perTick;              // score ticks in a MIDI tick, at the tempo in force
    std::uint32_t lastWritten;   // microseconds per quarter note: the tempo that counts as known
    double barPos = 0.0;         // score time of the last bar reached
    std::uint32_t sameBars = 0;  // bars since the last tempo event
    bool forced = false;         // the next bar writes its tempo, changed or not
};

TMidiExporter::TMidiExporter(TNotes& source, TMidiFile& target, bool firstBar)
    : score(&source), file(&target), fixFirstBar(firstBar) {
    CopyNames();
    std::fill(std::begin(lastProgram), std::end(lastProgram), noProgram);
    CopyMeter();
    if (score->bars.empty()) {
        ExportFixedTempo();
        return;
    }
    score->NormalizeBars(score->meterNumerator, score->meterDenominatorLog2, TruncateToUint32(score->tempo),
                         score->LastTime());
    PrepareBars();
    ExportWithBars();
}

void TMidiExporter::CopyNames() {
    file->title = score->title;
    const std::size_t count = std::min(score->layers.size(), namedLayers);
    for (std::size_t layer = 0; layer < count; ++layer)
        file->SetTrackName(static_cast<std::uint32_t>(layer), score->layers[layer].name);
}

void TMidiExporter::CopyMeter() {
    file->keySharps = score->keySharps;  // NOLINT(bugprone-signed-char-misuse,cert-str34-c): a number
    file->keyMinor = score->keyMinor ? 1 : 0;
    file->numerator = score->meterNumerator;
    file->denominatorLog2 = score->meterDenominatorLog2;
}

std::uint32_t TMidiExporter::FixedTempo() const {
    return TruncateToUint32(Quotient(minuteMicroseconds, score->tempo) + 0.5);
}

// Microseconds per quarter note of a bar that lasts `length` score ticks.
std::uint32_t TMidiExporter::BarTempo(std::int64_t length) const {
    const double microseconds = static_cast<double>(length) * 1e6 * secondsPerTick;
    return TruncateToUint32(
        Quotient(PowerOfTwo(score->meterDenominatorLog2) * microseconds, score->meterNumerator * 4.0) + 0.5);
}

void TMidiExporter::ExportFixedTempo() {
    file->tempo = FixedTempo();
    const double ticks = score->tempo * double{quarterTicks} * minutesPerTick;  // MIDI ticks a score tick
    for (const TNoteBoundary* point : score->points) {
        if (!GoesOut(*point->note)) continue;
        double& last = trackTime[point->note->layer];
        const double time = std::trunc(point->time * ticks);
        AddEvents(*point, TruncateToUint32(time - last));
        last = time;
    }
}

// The opening bar may be a stub. It is dropped, or the music moves until it is a bar like the second: later
// as a rule, earlier where a bar that fills a gap stands very close to the second.
void TMidiExporter::PrepareBars() {
    score->AddBar(0, score->meterNumerator);
    if (score->bars.size() < 2) return;
    const auto second = std::next(score->bars.begin());
    const std::int64_t firstLength = second->first - score->bars.begin()->first;
    if (firstLength >= closestBars) return;
    const auto third = std::next(second);
    if (fixFirstBar && third != score->bars.end())
        ShiftScore(std::int64_t{third->first - second->first} - firstLength);
    else
        score->RemoveBar(second->first);
}

// Each note's begin moves by `distance`, those that lead first, so that none is visited twice as they change
// places. The first bar goes, and the others move along. The time line ends where it ends: begins stay on it,
// and a bar past the last tick is dropped.
void TMidiExporter::ShiftScore(std::int64_t distance) {
    const std::size_t count = score->notes.size();
    for (std::size_t done = 0; done < count; ++done) {
        TNote* const note = score->notes[distance > 0 ? count - 1 - done : done];
        note->SetBegin(
            static_cast<std::uint32_t>(std::clamp<std::int64_t>(note->Begin() + distance, 0, lastTick)));
    }
    TBars moved(score->bars.get_allocator());
    for (auto bar = std::next(score->bars.begin()); bar != score->bars.end(); ++bar)
        if (bar->first + distance <= lastTick)
            moved.emplace_hint(moved.end(), static_cast<std::uint32_t>(bar->first + distance), bar->second);
    score->bars.swap(moved);
}

void TMidiExporter::ExportWithBars() {
    TBarWalk walk{score->bars.begin(), score->bars.end(), 0.0, 0.0, FixedTempo()};
    const std::uint32_t beatsInTicks = score->meterNumerator * 4 * quarterTicks;
    const std::uint32_t beatValue = PowerOfTwo(score->meterDenominatorLog2);
    walk.barTicks = beatValue > 0 ? beatsInTicks / beatValue : 0;

    // A bar at 0 is where the music starts; the next one's key is the length of the opening bar.
    if (walk.next->first == 0) ++walk.next;
    if (walk.next != walk.end) walk.lastWritten = BarTempo(walk.next->first);
    file->tempo = walk.lastWritten;
    walk.perTick = PerTick(walk.lastWritten);

    for (const TNoteBoundary* point : score->points) {
        if (!GoesOut(*point->note)) continue;
        if (walk.next != walk.end && walk.next->first <= point->time) EnterBar(walk, true);
        AddEvents(*point, StepTo(point->time, point->note->layer, walk.perTick));
    }
    while (walk.next != walk.end) EnterBar(walk, false);
}

// The bar that was next begins. Its length, from where the file's bars have come to up to the bar after it,
// gives its tempo, so that a difference does not add up. A changed tempo is written behind a delta of the
// bars since the one before, whatever notes track 0 has gained; the bar after a run of equal ones always
// writes its own. `carry` settles each track's time in ticks of the old tempo.
void TMidiExporter::EnterBar(TBarWalk& walk, bool carry) {
    if (++walk.next == walk.end) return;
    walk.barPos += walk.perTick * walk.barTicks;
    const std::uint32_t tempo = BarTempo(TruncateToInt64(walk.next->first - walk.barPos));
    if (tempo <= walk.lastWritten * tempoRaised && tempo >= walk.lastWritten * tempoLowered && !walk.forced) {
        ++walk.sameBars;
        return;
    }
    if (carry) CarryTicks(walk);
    walk.lastWritten = tempo;
    walk.perTick = PerTick(tempo);
    file->AddDelta(0, TruncateToUint32((walk.sameBars + 1.0) * walk.barTicks));
    file->AddTempo(tempo);
    walk.forced = walk.sameBars > 0;
    walk.sameBars = 0;
}

// Only layers that the table knows have notes. The quotient is whole but for rounding errors, hence the 0.3.
void TMidiExporter::CarryTicks(const TBarWalk& walk) {
    const std::size_t count = std::min(score->layers.size(), layerCount);
    for (std::size_t layer = 0; layer < count; ++layer) {
        carriedTicks[layer] += TruncateToUint32(Quotient(walk.barPos - trackTime[layer], walk.perTick) + 0.3);
        trackTime[layer] = walk.barPos;
    }
}

// MIDI ticks from the layer's last event to `time`. Counts wrap: a track that is ahead of the bar owes ticks.
// Where even the sum is owed, the event follows at once and the debt stays, rather than becoming the giant
// delta that an unsigned count would make of it.
std::uint32_t TMidiExporter::StepTo(std::uint32_t time, std::uint8_t layer, double perTick) {
    const std::int64_t whole = TruncateToInt64(Quotient(time - trackTime[layer], perTick));
    trackTime[layer] += static_cast<double>(whole) * perTick;
    const std::uint32_t ticks = static_cast<std::uint32_t>(whole) + carriedTicks[layer];
    const bool owed = static_cast<std::int32_t>(ticks) < 0;
    carriedTicks[layer] = owed ? ticks : 0;
    return owed ? 0 : ticks;
}

// Programs are remembered by channel, not by layer.
bool TMidiExporter::TakesProgram(const TNote& note) {
    if (note.program >= 128 || note.program == lastProgram[note.channel]) return false;
    lastProgram[note.channel] = note.program;
    return true;
}

void TMidiExporter::AddEvents(const TNoteBoundary& point, std::uint32_t delta) {
    const TNote& note = *point.note;
    const bool starts = point.kind == 1;
    if (starts && TakesProgram(note)) {
        file->AddDelta(note.layer, delta);
        file->AddProgram(note.layer, note.program, note.channel);
        delta = 0;
    }
    file->AddDelta(note.layer, delta);
    const std::uint8_t pitch = static_cast<std::uint8_t>(note.pitch + lowestNote);
    if (starts)
        file->AddNoteOn(note.layer, pitch, Velocity(note.level), note.channel);
    else
        file->AddNoteOff(note.layer, pitch, note.channel);
}

void SaveScore(const TNotes& score, TBaseStream& stream, bool fixFirstBar) {
    const auto copy = std::make_unique<TNotes>();
    copy->Assign(score);
    TMidiFile file;
    const TMidiExporter exporter(*copy, file, fixFirstBar);
    file.Write(stream);
}
