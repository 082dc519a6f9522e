#include "tools/host/note_cleaning.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "tools/host/read_number.h"

namespace {

constexpr std::string_view gridStart = "1/";
constexpr int finestGrid = 192;  // parts of a whole note: a triplet of 1/128

// Hands each note, with the last one kept of its channel and pitch or null, to `merge`, which says whether it
// has gone into that one.
template <typename Merge>
std::vector<HeardNote> Merged(const std::vector<HeardNote>& notes, Merge merge) {
    std::vector<HeardNote> kept;
    std::map<std::pair<int, int>, std::size_t> last;  // by channel and pitch: index into kept
    for (const HeardNote& note : notes) {
        const auto [found, isFirst] = last.try_emplace({note.channel, note.pitch}, kept.size());
        if (!isFirst && merge(kept[found->second], note)) continue;
        found->second = kept.size();
        kept.push_back(note);
    }
    return kept;
}

// Seconds from the start of the audio to bar 1; `notes` are sorted by begin.
double BarOne(const std::vector<HeardNote>& notes, const NoteCleaning& cleaning, std::int32_t rate) {
    if (cleaning.barOne) return *cleaning.barOne;
    return notes.empty() ? 0 : static_cast<double>(notes.front().begin) / rate;
}

// Lines lie at `first` + n * `part` samples. One before the audio becomes its start.
std::vector<HeardNote> OnGrid(std::vector<HeardNote> notes, double first, double part) {
    const auto line = [&](std::int64_t at) { return std::round((static_cast<double>(at) - first) / part); };
    const auto sample = [&](double n) { return std::max<std::int64_t>(0, std::llround(first + n * part)); };
    for (HeardNote& note : notes) {
        const double begin = line(note.begin), end = std::max(begin + 1, line(note.end));
        note.begin = sample(begin);
        note.end = sample(end);
    }
    std::stable_sort(notes.begin(), notes.end(), BeginsBefore);
    return Merged(notes, [](HeardNote& earlier, const HeardNote& note) {
        const bool sameLine = earlier.begin == note.begin;
        if (sameLine) {
            earlier.end = std::max(earlier.end, note.end);
            earlier.velocity = std::max(earlier.velocity, note.velocity);
        } else {
            earlier.end = std::min(earlier.end, note.begin);
        }
        return sameLine;
    });
}

}  // namespace

int ParseGrid(const std::string& text) {
    int parts = 0;
    if (text.starts_with(gridStart) && ReadNumber(text.substr(gridStart.size()), parts) && parts >= 1 &&
        parts <= finestGrid)
        return parts;
    throw std::invalid_argument("\"" + text + "\" is no part of a whole note, 1/1 to 1/" +
                                std::to_string(finestGrid));
}

std::optional<double> ParseBarOne(const std::string& text) {
    constexpr double longest = 86400;  // a day
    if (text == "auto") return std::nullopt;
    double seconds = -1;
    if (ReadNumber(text, seconds) && seconds >= 0 && seconds <= longest) return seconds;
    throw std::invalid_argument("\"" + text + "\" is neither auto nor a number of seconds");
}

std::vector<HeardNote> CleanNotes(std::vector<HeardNote> notes, const NoteCleaning& cleaning,
                                  std::int32_t rate) {
    const double samplesPerMs = rate / 1000.0;
    const double shortestGap = cleaning.shortestGap * samplesPerMs;
    if (shortestGap > 0)
        notes = Merged(notes, [&](HeardNote& earlier, const HeardNote& note) {
            const bool joins = static_cast<double>(note.begin - earlier.end) < shortestGap;
            if (joins) earlier.end = std::max(earlier.end, note.end);
            return joins;
        });
    std::erase_if(notes, [&](const HeardNote& note) {
        return static_cast<double>(note.end - note.begin) < cleaning.shortestNote * samplesPerMs;
    });
    if (cleaning.gridParts == 0) return notes;
    const double first = BarOne(notes, cleaning, rate) * rate;
    const double whole = 4 * 60.0 / cleaning.tempo * rate;  // samples
    return OnGrid(std::move(notes), first, whole / cleaning.gridParts);
}

// Ends stand before begins of the same date, so that a note that follows at once is not ended by the one
// before.
Take Cleaned(const Take& take, const NoteCleaning& cleaning) {
    Take cleaned = take;
    const std::vector<HeardNote> notes = CleanNotes(PairNotes(take), cleaning, take.rate);
    cleaned.tempo = cleaning.tempo;
    cleaned.meter = cleaning.meter;
    cleaned.barOne = BarOne(notes, cleaning, take.rate);
    cleaned.gridParts = cleaning.gridParts;
    if (cleaning.IsOff()) return cleaned;
    std::erase_if(cleaned.events, [](const TimedEvent& event) { return (event.bytes[0] & 0xE0) == 0x80; });
    const auto add = [&](std::int64_t sample, int status, int pitch, int velocity) {
        cleaned.events.push_back({sample,
                                  {static_cast<std::uint8_t>(status), static_cast<std::uint8_t>(pitch),
                                   static_cast<std::uint8_t>(velocity)}});
    };
    for (const HeardNote& note : notes) add(note.end, 0x80 | note.channel, note.pitch, 0);
    for (const HeardNote& note : notes) {
        add(note.begin, 0x90 | note.channel, note.pitch, note.velocity);
        cleaned.length = std::max(cleaned.length, note.end);
    }
    std::stable_sort(cleaned.events.begin(), cleaned.events.end(),
                     [](const TimedEvent& a, const TimedEvent& b) { return a.sample < b.sample; });
    return cleaned;
}
