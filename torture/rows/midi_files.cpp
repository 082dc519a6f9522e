// Written MIDI files, as three programs of other makers and a strict reader of our own read them.
#include <cmath>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <tuple>

#include "delivery/note_out.h"
#include "delivery/rt_recording.h"
#include "midifile/midi_exporter.h"
#include "tests/notes/memory_stream.h"
#include "tests/support/midi_reader.h"
#include "tests/support/temp_folder.h"
#include "torture/row.h"
#include "torture/rows/plug_in.h"

namespace {

constexpr std::uint64_t realTakes = 1000, randomTakes = 10000;
constexpr double ticksPerSecond = 240;  // 120 to a quarter note, two of which make a second
constexpr double scoreRate = 22050;     // Hz, of the whole ticks in which a score, in between, has its times
constexpr std::uint32_t drums = 9;      // the channel of which a sound font has few programs
constexpr const char* soundFont = "/usr/share/sounds/sf2/default-GM.sf2";

// A note as a take or a file has it; time in MIDI ticks, which a take has parts of.
struct Heard {
    unsigned channel, pitch;  // from 0
    double begin, end;
    unsigned velocity;
    bool operator<(const Heard& other) const {
        return std::tie(channel, pitch, begin) < std::tie(other.channel, other.pitch, other.begin);
    }
};

// Pairs each on with the next off of its channel and pitch.
class Pairing {
public:
    void Add(double tick, unsigned status, unsigned pitch, unsigned velocity) {
        const unsigned channel = status & 15U, kind = status >> 4U;
        if (kind == 9 && velocity > 0) open.push_back({channel, pitch, tick, 0, velocity});
        if (kind != 8 && !(kind == 9 && velocity == 0)) return;
        const auto note = std::find_if(open.begin(), open.end(), [=](const Heard& heard) {
            return heard.channel == channel && heard.pitch == pitch;
        });
        if (note == open.end()) return void(whole = false);
        notes.push_back(*note);
        notes.back().end = tick;
        open.erase(note);
    }
    // Sorted. Every on must have had its off.
    std::vector<Heard> Notes(Trial& trial, const std::string& who) {
        trial.Require(whole && open.empty(), who + ": an on without an off, or the reverse");
        std::sort(notes.begin(), notes.end());
        return notes;
    }

private:
    std::vector<Heard> open, notes;
    bool whole = true;
};

// A take's notes may overlap those of their own pitch: one that the end of the sound cuts off ends at the
// clock, and the next is dated back to before that. There a second on ends the first note, and an off without
// an on is nothing.
std::vector<Heard> NotesOf(const std::vector<TRecordEvent>& take, double rate) {
    const auto offsLast = [](const TRecordEvent& event) { return (event.message & 0xFFU) == 0x80U; };
    std::vector<TRecordEvent> events = take;
    std::stable_sort(events.begin(), events.end(), [&](const TRecordEvent& a, const TRecordEvent& b) {
        return a.time != b.time ? a.time < b.time : offsLast(a) < offsLast(b);
    });
    std::map<std::pair<unsigned, unsigned>, Heard> open;
    std::vector<Heard> notes;
    for (const TRecordEvent& event : events) {
        const unsigned kind = event.message >> 4U & 15U, channel = event.message & 15U,
                       pitch = event.message >> 8 & 0x7F;
        if (kind != 8 && kind != 9) continue;
        const double tick =
            std::floor(static_cast<double>(event.time) * scoreRate / rate) / scoreRate * ticksPerSecond;
        if (auto ended = open.extract({channel, pitch})) {
            ended.mapped().end = tick;
            notes.push_back(ended.mapped());
        }
        if (kind == 9) open[{channel, pitch}] = {channel, pitch, tick, 0, event.message >> 16 & 0x7F};
    }
    std::sort(notes.begin(), notes.end());
    return notes;
}

void RequireSame(Trial& trial, const std::vector<Heard>& due, const std::vector<Heard>& heard,
                 const std::string& who) {
    trial.Require(heard.size() == due.size(),
                  who + ": " + std::to_string(heard.size()) + " notes, not " + std::to_string(due.size()));
    const auto told = [](const Heard& note) {
        return std::to_string(note.channel) + "/" + std::to_string(note.pitch) + " from " +
               std::to_string(note.begin) + " to " + std::to_string(note.end) + " at " +
               std::to_string(note.velocity);
    };
    for (std::size_t i = 0; i < due.size(); ++i)
        trial.Require(heard[i].channel == due[i].channel && heard[i].pitch == due[i].pitch &&
                          heard[i].velocity == due[i].velocity &&
                          std::fabs(heard[i].begin - due[i].begin) <= 1 &&
                          std::fabs(heard[i].end - due[i].end) <= 1,
                      who + ": heard " + told(heard[i]) + ", due " + told(due[i]));
}

// What a program prints, errors included. A program that is missing, or says that something is wrong, fails.
std::string Printed(Trial& trial, const std::string& command) {
    std::FILE* const pipe = popen((command + " 2>&1").c_str(), "r");
    trial.Require(pipe != nullptr, "no pipe");
    std::string text;
    char piece[4096];
    while (const std::size_t count = std::fread(piece, 1, sizeof piece, pipe)) text.append(piece, count);
    const int status = pclose(pipe);
    const std::string told = command + ": status " + std::to_string(status) + ", " + text.substr(0, 300);
    trial.Require(status == 0, told);
    for (const char* const complaint : {"rror", "arning", "nexpected"})
        trial.Require(text.find(complaint) == std::string::npos, told);
    return text;
}

// "2, 240, Note_on_c, 0, 69, 100"
void AddMidicsvLine(Pairing& pairing, const std::string& line) {
    unsigned track = 0, tick = 0, channel = 0, pitch = 0, velocity = 0;
    char what[8] = {};
    if (std::sscanf(line.c_str(), "%u, %u, Note_%7[^_]_c, %u, %u, %u", &track, &tick, what, &channel, &pitch,
                    &velocity) == 6)
        pairing.Add(tick, (what == std::string("on") ? 0x90U : 0x80U) | channel, pitch, velocity);
}

// "Time=240  Note on, chan=1 pitch=69 vol=100"
void AddMftextLine(Pairing& pairing, const std::string& line) {
    unsigned tick = 0, channel = 0, pitch = 0, velocity = 0;
    char what[8] = {};
    if (std::sscanf(line.c_str(), "Time=%u Note %7[^,], chan=%u pitch=%u vol=%u", &tick, what, &channel,
                    &pitch, &velocity) == 5)
        pairing.Add(tick, (what == std::string("on") ? 0x90U : 0x80U) | (channel - 1), pitch, velocity);
}

std::vector<Heard> ReadBy(Trial& trial, const std::string& program, const std::string& path,
                          void (*add)(Pairing&, const std::string&)) {
    std::istringstream lines(Printed(trial, program + " '" + path + "'"));
    Pairing pairing;
    for (std::string line; std::getline(lines, line);) add(pairing, line);
    return pairing.Notes(trial, program);
}

std::vector<Heard> ReadStrictly(Trial& trial, const Bytes& file) {
    Pairing pairing;
    try {
        for (const std::vector<MidiEvent>& track : MidiReader(file).tracks)
            for (const MidiEvent& event : track)
                if (event.status < 0xC0)
                    pairing.Add(static_cast<double>(event.tick), event.status, event.data.at(0),
                                event.data.at(1));
    } catch (const std::exception& wrong) {
        trial.Fail(std::string("the strict reader: ") + wrong.what());
    }
    return pairing.Notes(trial, "the strict reader");
}

void RequireReadable(Trial& trial, const std::string& path, const std::vector<Heard>& due) {
    std::ifstream file(path, std::ios::binary);
    const Bytes bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    RequireSame(trial, due, ReadStrictly(trial, bytes), "the strict reader");
    RequireSame(trial, due, ReadBy(trial, "midicsv", path, AddMidicsvLine), "midicsv");
    RequireSame(trial, due, ReadBy(trial, "mftext", path, AddMftextLine), "mftext");
    Printed(trial, "midi2abc '" + path + "'");
    trial.Require(std::filesystem::exists(soundFont), std::string("no sound font ") + soundFont);
    Printed(
        trial,
        std::string(
            "fluidsynth -q -n -i -o synth.dynamic-sample-loading=1 -R 0 -C 0 -r 8000 -T raw -F /dev/null ") +
            soundFont + " '" + path + "'");
}

// Notes that do not meet another of their pitch and channel, at any rate, with any velocity and program.
std::vector<TRecordEvent> RandomTake(Trial& trial, double rate) {
    std::vector<TRecordEvent> take;
    std::vector<std::pair<std::uint32_t, std::uint32_t>> used;
    for (std::uint64_t left = 1 + trial.Below(200); left > 0; --left) {
        const auto channel = static_cast<std::uint32_t>(trial.Below(16)),
                   pitch = static_cast<std::uint32_t>(trial.Below(128));
        if (std::find(used.begin(), used.end(), std::make_pair(channel, pitch)) != used.end()) continue;
        used.emplace_back(channel, pitch);
        auto time = static_cast<std::int64_t>(trial.Below(static_cast<std::uint64_t>(rate)));
        for (std::uint64_t notes = 1 + trial.Below(4); notes > 0; --notes) {
            const auto span = static_cast<std::uint64_t>(rate);  // a second; ends and begins 12 ticks apart
            take.push_back(
                {time, 0x90U | channel | pitch << 8 | static_cast<std::uint32_t>(1 + trial.Below(127)) << 16,
                 1.0F});
            time += static_cast<std::int64_t>(span / 20 + trial.Below(span));
            take.push_back({time, 0x80U | channel | pitch << 8, 1.0F});
            time += static_cast<std::int64_t>(span / 20 + trial.Below(span));
        }
        if (channel != drums && trial.OneIn(5))
            take.push_back({0, 0xC0U | channel | static_cast<std::uint32_t>(trial.Below(128)) << 8, 0});
    }
    std::stable_sort(take.begin(), take.end(),
                     [](const TRecordEvent& a, const TRecordEvent& b) { return a.time < b.time; });
    return take;
}

void TryRandomTake(Trial& trial, const std::string& path) {
    constexpr std::uint32_t rates[] = {8000, 22050, 44100, 48000, 96000, 192000};
    const std::uint32_t rate = rates[trial.Below(std::size(rates))];
    const std::vector<TRecordEvent> take = RandomTake(trial, rate);
    const auto score = std::make_unique<TNotes>();
    TakeToNotes(take, *score, static_cast<std::uint32_t>(1 + trial.Below(9)), rate);
    // From 128 on, readers take the byte of a text's length for the first of two.
    score->title = std::string(trial.Below(128), 't');
    for (TLayerRecord& layer : score->layers) layer.name = std::string(trial.Below(128), 'n');
    {
        TFStream stream(path, std::ios::out | std::ios::binary | std::ios::trunc, TFStream::defaultBuffer);
        SaveScore(*score, stream, trial.OneIn(2));
        trial.Require(stream.Finish(), "not written");
    }
    RequireReadable(trial, path, NotesOf(take, rate));
}

const TRTRecording* RecordingOf(PlugIn& plugIn) {
    const TRTRecording* found = nullptr;
    plugIn.Object().noteRecorder.outputs.ForEach([&](TNoteOut& output) {
        if (const auto* const recording = dynamic_cast<TRTRecording*>(&output)) found = recording;
    });
    return found;
}

// On the first channel, the only one on which a take has an order where a note ends and the next begins at
// one sample.
void TryRealTake(Trial& trial, const std::string& path) {
    constexpr std::int32_t rates[] = {22050, 44100, 48000, 96000};
    const std::int32_t rate = rates[trial.Below(std::size(rates))];
    PlugIn plugIn(rate);
    plugIn.effect->setParameter(plugIn.effect, paramSendProgramChange, static_cast<float>(trial.Below(2)));
    plugIn.effect->setParameter(plugIn.effect, paramInstrument,
                                static_cast<float>(trial.Below(128)) / 127.0F);
    plugIn.Object().startRecording();
    plugIn.Play(RandomMusic(trial.random, 5, rate), 1 + trial.Below(2000));
    plugIn.Object().stopRecording();
    trial.Require(!plugIn.Object().nothingRecorded(), "five seconds of music give no take");
    trial.Require(plugIn.Object().saveRecording(path), "not written");
    RequireReadable(trial, path, NotesOf(RecordingOf(plugIn)->GetTake(), rate));
}

void TryMidiFile(Trial& trial) {
    const TempFolder folder;
    const std::string path = folder / "take.mid";
    trial.number % 11 == 10 ? TryRealTake(trial, path) : TryRandomTake(trial, path);
}

const Registered midiFiles({"FIL-8", "writes MIDI files that other programs read, note for note", inRelease,
                            realTakes + randomTakes, 100, 30, TryMidiFile});

}  // namespace
