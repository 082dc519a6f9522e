#include "tools/host/music_xml.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <numeric>
#include <set>
#include <sstream>

#include "tools/host/bar_time.h"
#include "tools/host/note_list.h"

namespace {

constexpr std::array signs = {"whole", "half", "quarter", "eighth", "16th", "32nd", "64th", "128th"};
constexpr int sixteenths = 16;  // of a whole note

struct Chord {
    std::set<int> pitches;  // MIDI notes
    std::int64_t end = 0;   // ticks
};
using Chords = std::map<std::int64_t, Chord>;  // by begin, in ticks

// A note sign, such as a dotted quarter or an eighth of a triplet.
struct Sign {
    std::int64_t length = 0;  // ticks
    std::string type;         // its elements; empty: there is none of this length
};

// Writes bar after bar. A tick is the longest time of which grid, beats and quarters are all whole multiples.
class Writer {
public:
    explicit Writer(const Take& heard)
        : take(heard),
          parts(heard.gridParts > 0 ? heard.gridParts : sixteenths),
          whole(std::lcm(std::lcm(parts, heard.meter.BeatParts()), 4)),
          bar(whole / heard.meter.BeatParts() * heard.meter.beats) {}

    std::string Write() {
        const std::vector<HeardNote> notes = PairNotes(take);
        before = BarsBeforeBarOne(take, notes);
        const Chords chords = FindChords(notes);
        xml =
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<score-partwise version=\"4.0\">\n"
            "<part-list><score-part id=\"P1\"><part-name>Music</part-name></score-part></part-list>\n"
            "<part id=\"P1\">\n";
        std::int64_t now = 0;
        for (const auto& [begin, chord] : chords) {
            Add(now, begin, {});
            Add(begin, chord.end, chord.pitches);
            now = chord.end;
        }
        // The last bar is full, and there is one at least.
        Add(now, std::max<std::int64_t>(1, (now + bar - 1) / bar) * bar, {});
        return xml + "</part>\n</score-partwise>\n";
    }

private:
    std::int64_t Tick(std::int64_t sample) const {
        const double quarters =
            QuartersFromBarOne(take, sample) + static_cast<double>(before) * take.meter.BarQuarters();
        return std::llround(quarters * static_cast<double>(parts) / 4) * (whole / parts);
    }

    Chords FindChords(const std::vector<HeardNote>& notes) const {
        Chords chords;
        for (const HeardNote& note : notes) {
            const std::int64_t begin = std::max<std::int64_t>(0, Tick(note.begin));
            Chord& chord = chords[begin];
            chord.pitches.insert(note.pitch);
            chord.end = std::max({chord.end, begin + whole / parts, Tick(note.end)});
        }
        for (auto chord = chords.begin(); chord != chords.end() && std::next(chord) != chords.end(); ++chord)
            chord->second.end = std::min(chord->second.end, std::next(chord)->first);
        return chords;
    }

    // A chord, or without pitches a rest.
    void Add(std::int64_t begin, std::int64_t end, const std::set<int>& pitches) {
        for (std::int64_t now = begin; now < end;) {
            const std::int64_t inBar = now % bar;
            if (inBar == 0) BeginBar(now / bar);
            const std::int64_t left = std::min(end - now, bar - inBar);
            const bool isWholeRest = pitches.empty() && left == bar;
            const Sign sign = isWholeRest ? Sign{bar, ""} : LongestSign(inBar, left);
            const std::string first = now > begin ? "stop" : "";
            const std::string last = now + sign.length < end ? "start" : "";
            if (pitches.empty()) AddNote(isWholeRest ? "<rest measure=\"yes\"/>" : "<rest/>", sign, {});
            for (const int pitch : pitches)
                AddNote((pitch == *pitches.begin() ? "" : "<chord/>") + Pitch(pitch), sign, {first, last});
            now += sign.length;
            if (now % bar == 0) xml += "</measure>\n";
        }
    }

    void BeginBar(std::int64_t index) {
        const std::int64_t number = index - before + 1;
        xml += "<measure number=\"" + std::to_string(number) + '"' + (number < 1 ? " implicit=\"yes\"" : "") +
               ">\n";
        if (index > 0) return;
        std::ostringstream tempo;
        tempo << take.tempo;
        xml += "<attributes><divisions>" + std::to_string(whole / 4) +
               "</divisions><key><fifths>0</fifths></key><time><beats>" + std::to_string(take.meter.beats) +
               "</beats><beat-type>" + std::to_string(take.meter.BeatParts()) + "</beat-type></time>" +
               (IsLow() ? "<clef><sign>F</sign><line>4</line></clef>"
                        : "<clef><sign>G</sign><line>2</line></clef>") +
               "</attributes>\n<direction placement=\"above\"><direction-type><metronome>"
               "<beat-unit>quarter</beat-unit><per-minute>" +
               tempo.str() + "</per-minute></metronome></direction-type><sound tempo=\"" + tempo.str() +
               "\"/></direction>\n";
    }

    // The mean lies under the C between the staves.
    bool IsLow() const {
        std::int64_t sum = 0;
        for (const HeardNote& note : PairNotes(take)) sum += note.pitch - 60;
        return sum < 0;
    }

    // The longest that starts on a multiple of itself, or dotted of the next longer plain one; a third of a
    // longer one must not leave its quarter. Where none will do, all that is left goes without a sign.
    Sign LongestSign(std::int64_t begin, std::int64_t left) const {
        const bool isCompound = take.meter.beats % 3 == 0 && take.meter.beatLog2 >= 3;
        Sign longest;
        const auto offer = [&](std::int64_t numerator, std::int64_t denominator, std::int64_t aligned,
                               const std::string& type) {
            const std::int64_t length = whole * numerator / denominator, quarter = whole / 4;
            if (length * denominator != whole * numerator || length > left || length <= longest.length)
                return;
            const bool fits =
                aligned > 0 ? begin % aligned == 0 : begin / quarter == (begin + length - 1) / quarter;
            if (fits) longest = {length, type};
        };
        for (std::size_t halved = 0; halved < signs.size(); ++halved) {
            const std::int64_t denominator = std::int64_t{1} << halved, twice = 2 * whole / denominator;
            const std::string type = std::string("<type>") + signs[halved] + "</type>";
            offer(1, denominator, whole / denominator, type);
            offer(3, 2 * denominator, isCompound ? whole * 3 / 2 / denominator : twice, type + "<dot/>");
            offer(2, 3 * denominator, 0,
                  type +
                      "<time-modification><actual-notes>3</actual-notes>"
                      "<normal-notes>2</normal-notes></time-modification>");
        }
        return longest.length > 0 ? longest : Sign{left, ""};
    }

    static std::string Pitch(int pitch) {
        std::string name = NoteName(pitch);
        const bool isSharp = name[1] == '#';
        return std::string("<pitch><step>") + name[0] + "</step>" + (isSharp ? "<alter>1</alter>" : "") +
               "<octave>" + name.substr(isSharp ? 2 : 1) + "</octave></pitch>";
    }

    void AddNote(const std::string& what, const Sign& sign, const std::vector<std::string>& ties) {
        xml += "<note>" + what + "<duration>" + std::to_string(sign.length) + "</duration>";
        std::string drawn;
        for (const std::string& tie : ties) {
            if (tie.empty()) continue;
            xml += "<tie type=\"" + tie + "\"/>";
            drawn += "<tied type=\"" + tie + "\"/>";
        }
        xml += "<voice>1</voice>" + sign.type;
        if (!drawn.empty()) xml += "<notations>" + drawn + "</notations>";
        xml += "</note>\n";
    }

    const Take& take;
    const std::int64_t parts, whole, bar;  // of the grid, of a whole note; the others in ticks
    std::int64_t before = 0;               // bars before bar 1
    std::string xml;
};

}  // namespace

std::string MusicXml(const Take& take) {
    return Writer(take).Write();
}
