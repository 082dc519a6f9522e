#include "tools/host/take_output.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <sstream>

#include "tools/host/chord_line.h"
#include "tools/host/note_list.h"
#include "tools/host/printable.h"
#include "tools/host/text_table.h"

namespace {

std::string Fixed(double number, int decimals) {
    std::array<char, 64> text{};
    (void)std::snprintf(text.data(), text.size(), "%.*f", decimals, number);
    return text.data();
}

// Whole microseconds, which is finer than a sample at any rate.
double Microseconds(double seconds) {
    return std::round(seconds * 1e6) / 1e6;
}

const char* Kind(const std::array<std::uint8_t, 3>& bytes) {
    if (bytes == std::array<std::uint8_t, 3>{}) return "none";
    switch (bytes[0] >> 4) {
        case 0x8: return "note off";
        case 0x9: return bytes[2] == 0 ? "note off" : "note on";
        case 0xA: return "key pressure";
        case 0xB: return "controller";
        case 0xC: return "program";
        case 0xD: return "channel pressure";
        case 0xE: return "pitch bend";
        case 0xF: return "system";
        default: return "data";
    }
}

std::string OneLine(const nlohmann::ordered_json& object) {
    return object.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

// JSON holds text, and a file's name is any bytes: those that are no text stand beside it in hexadecimal
// digits.
nlohmann::ordered_json Named(const std::string& file) {
    nlohmann::ordered_json object = {{"file", file}};
    if (IsUtf8(file)) return object;
    std::string digits;
    for (const char byte : file) {
        std::array<char, 3> two{};
        (void)std::snprintf(two.data(), two.size(), "%02x", static_cast<unsigned char>(byte));
        digits += two.data();
    }
    object["file_bytes"] = digits;
    return object;
}

}  // namespace

std::string NoteTable(const std::string& file, const Take& take) {
    TextTable table;
    table.columns = {{"start", true}, {"end", true}, {"note"}, {"MIDI", true}, {"velocity", true}};
    for (const HeardNote& note : PairNotes(take))
        table.rows.push_back({Fixed(Seconds(take, note.begin), 3), Fixed(Seconds(take, note.end), 3),
                              NoteName(note.pitch), std::to_string(note.pitch),
                              std::to_string(note.velocity)});
    std::ostringstream out;
    out << Printable(file) << ": " << Fixed(Seconds(take, take.length), 3) << " s at " << take.rate << " Hz, "
        << table.rows.size() << (table.rows.size() == 1 ? " note" : " notes");
    if (take.tuning != 440)
        out << ", " << (take.tuning > 0 ? "A at " + Fixed(take.tuning, 1) + " Hz" : "no tuning found");
    out << '\n';
    if (!table.rows.empty()) out << table;
    TextTable chords;
    chords.columns = {{"time", true}, {"chord"}};
    for (const ChordChange& change : ChordLine(take))
        chords.rows.push_back({Fixed(change.time, 1), change.name.empty() ? "-" : change.name});
    if (!chords.rows.empty()) out << '\n' << chords;
    return out.str();
}

std::string NoteJson(const std::string& file, const Take& take) {
    nlohmann::ordered_json notes = nlohmann::ordered_json::array();
    for (const HeardNote& note : PairNotes(take))
        notes.push_back({{"start", Microseconds(Seconds(take, note.begin))},
                         {"end", Microseconds(Seconds(take, note.end))},
                         {"name", NoteName(note.pitch)},
                         {"midi", note.pitch},
                         {"velocity", note.velocity},
                         {"channel", note.channel + 1}});
    nlohmann::ordered_json chords = nlohmann::ordered_json::array();
    for (const ChordChange& change : ChordLine(take))
        chords.push_back({{"time", change.time}, {"name", change.name}});
    nlohmann::ordered_json all = Named(file);
    all["rate"] = take.rate;
    all["seconds"] = Microseconds(Seconds(take, take.length));
    if (take.tuning != 440)
        all["tuning"] = take.tuning > 0 ? nlohmann::ordered_json(std::round(take.tuning * 10) / 10)
                                        : nlohmann::ordered_json();
    all["notes"] = std::move(notes);
    all["chords"] = std::move(chords);
    return OneLine(all);
}

std::string SkippedJson(const std::string& file) {
    nlohmann::ordered_json all = Named(file);
    all["skipped"] = true;
    return OneLine(all);
}

std::string FailedJson(const std::string& file, const std::string& reason) {
    nlohmann::ordered_json all = Named(file);
    all["error"] = reason;
    return OneLine(all);
}

std::string EventCsv(const Take& take) {
    std::vector<TimedEvent> events = take.events;
    std::stable_sort(events.begin(), events.end(),
                     [](const TimedEvent& a, const TimedEvent& b) { return a.sample < b.sample; });
    std::string out = "time,sample,status,data1,data2,kind\n";
    for (const TimedEvent& event : events) {
        out += Fixed(Seconds(take, event.sample), 6) + ',' + std::to_string(event.sample);
        for (const std::uint8_t byte : event.bytes) out += ',' + std::to_string(byte);
        out += std::string(",") + Kind(event.bytes) + '\n';
    }
    return out;
}

std::string SoundAdvice(const Take& take, bool isMix) {
    constexpr double fewNotes = 0.2;  // a second
    constexpr double quiet = -24;     // dBFS; at -27 a piano loses all but a few notes
    const auto notes = static_cast<double>(PairNotes(take).size());
    if (take.length == 0) return "holds no sound";
    if (notes >= fewNotes * Seconds(take, take.length)) return {};
    if (take.peakOfAll <= 0) return "holds nothing but silence";
    constexpr float silence = 1e-4F;  // 80 dB under full scale
    if (take.peak < silence && take.peakOfAll > 10 * take.peak)
        return isMix ? "its channels cancel each other in the mix; leave out --mix to hear the first one"
                     : "its first channel is silent; --mix hears the mean of all";
    const double level = 20 * std::log10(take.peak);  // dBFS
    if (level >= quiet) return {};
    return "few notes: its loudest sample is at " + Fixed(level, 1) +
           " dBFS; raise its level, to -6 dBFS say";
}
