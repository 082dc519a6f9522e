#include <algorithm>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <vector>

#include "notes/notes.h"
#include "parameters/parameters.h"
#include "tools/host/audio_folder.h"
#include "tools/host/commands/command.h"
#include "tools/host/commands/ear_options.h"
#include "tools/host/commands/parameters.h"
#include "tools/host/end_signal.h"
#include "tools/host/file_list.h"
#include "tools/host/music_xml.h"
#include "tools/host/note_cleaning.h"
#include "tools/host/picture.h"
#include "tools/host/printable.h"
#include "tools/host/progress.h"
#include "tools/host/read_number.h"
#include "tools/host/render_queue.h"
#include "tools/host/score_output.h"
#include "tools/host/take_output.h"

namespace {

// A kind of file that is left behind for each recording, if it is asked for.
struct RenderOutput {
    const char* option;
    const char* extension;
    const char* placeholder;
    const char* help;
    std::string_view firstBytes;
    std::string (*make)(const Take& take);
    std::optional<std::string> target = {};         // none: none is written
    std::vector<std::filesystem::path> paths = {};  // one a recording
};

std::string MidiBytes(const Take& take) {
    const auto score = std::make_unique<TNotes>();
    TakeToScore(take, *score);
    return MidiFileBytes(*score);
}

std::string ScoreBytes(const Take& take) {
    const auto score = std::make_unique<TNotes>();
    TakeToScore(take, *score);
    return StoredScoreBytes(*score);
}

std::vector<RenderOutput> AllOutputs() {
    return {{"--midi", ".mid", "OUT.mid", "also write the notes as a MIDI file", midiFirstBytes, MidiBytes},
            {"--score", ".tnotes", "OUT.tnotes", "also write the notes as a stored score", scoreFirstBytes,
             ScoreBytes},
            {"--musicxml", ".musicxml", "OUT.musicxml",
             "also write the notes as MusicXML, for notation programs", musicXmlFirstBytes, MusicXml},
            {"--picture", ".png", "OUT.png", "also draw a piano roll", pictureFirstBytes, PianoRoll},
            {"--events", ".csv", "OUT.csv", "also write all MIDI events as CSV", "time,sample,", EventCsv}};
}

constexpr char earOfRecordings[] = "file";  // a recording can wait for the better one

struct RenderOptions {
    std::vector<std::string> files;  // "-" among them: the names on standard input
    std::string list;                // file with more names; empty: none
    std::vector<RenderOutput> outputs;
    bool resume = false;
    bool force = false;
    bool json = false;
    bool mix = false;
    ParameterTexts parameters;
    EarTexts ear;
    std::string plugin;  // empty: the usual places
    std::string device;  // empty: none
    unsigned jobs = 1;   // 0: one for each core
    RenderSettings settings;
    std::string velocity;        // set or follow; empty: follow, unless Velocity is set
    std::string tuning = "440";  // Hz, or auto
    NoteCleaning cleaning;
    std::string grid;    // empty: none
    std::string played;  // MIDI file; empty: none
    std::string meter = "4/4";
    std::string barOne = "0";
};

void FindPaths(const std::vector<std::string>& files, RenderOutput& output) {
    if (!output.target) return;
    output.paths =
        ParseOption(output.option, [&] { return OutputPaths(files, *output.target, output.extension); });
}

void GuardFiles(const RenderOptions& options, const std::filesystem::path& plugin) {
    std::vector<PlannedOutput> planned;
    for (const RenderOutput& output : options.outputs)
        for (const std::filesystem::path& path : output.paths)
            planned.push_back({output.option, path, output.firstBytes});
    std::vector<std::filesystem::path> inputs(options.files.begin(), options.files.end());
    inputs.push_back(plugin);
    if (!options.list.empty()) inputs.emplace_back(options.list);
    Guard(planned, inputs, options.force);
}

// The recordings that are named on the command line and in lists, and those in the folders named there.
std::vector<std::string> AllFiles(const RenderOptions& options) {
    std::vector<std::string> files;
    for (const std::string& name : options.files) {
        const std::vector<std::string> named =
            name == "-" ? ReadFileList(name) : std::vector<std::string>{name};
        files.insert(files.end(), named.begin(), named.end());
    }
    if (!options.list.empty()) {
        const std::vector<std::string> listed = ReadFileList(options.list);
        files.insert(files.end(), listed.begin(), listed.end());
    }
    return WithFoldersSearched(files);
}

// All that is asked for of this file was left behind by an earlier run.
bool IsDone(const RenderOptions& options, std::size_t index) {
    return options.resume &&
           std::all_of(options.outputs.begin(), options.outputs.end(), [&](const RenderOutput& output) {
               return output.paths.empty() || IsUpToDate(output.paths[index], options.files[index]);
           });
}

std::vector<PlayedNote> Played(const std::string& path) {
    try {
        return ReadPlayedNotes(path);
    } catch (const std::exception& fault) {
        throw std::runtime_error("--played: " + path + ": " + fault.what());
    }
}

// Hears a file and leaves behind what is asked for.
Outcome Work(const RenderOptions& options, const PluginModule& module, std::size_t index,
             Progress& progress) {
    const std::string& file = options.files[index];
    Outcome outcome;
    if (options.settings.ended()) return outcome;
    if (IsDone(options, index)) {
        outcome.text = options.json ? SkippedJson(file) : Printable(file) + ": done before\n";
        return outcome;
    }
    Take take;
    try {
        take = Cleaned(
            Render(module, file, options.settings, [&](double share) { progress.Advance(index, share); }),
            options.cleaning);
        if (!options.played.empty()) take.played = Played(options.played);
    } catch (const std::exception& fault) {
        outcome.fault = file + ": " + fault.what();
        if (options.json) outcome.text = FailedJson(file, fault.what());
        return outcome;
    }
    const std::string advice = SoundAdvice(take, options.mix);
    if (!advice.empty()) outcome.advice = file + ": " + advice;
    try {
        outcome.text = options.json ? NoteJson(file, take) : NoteTable(file, take);
        for (const RenderOutput& output : options.outputs) {
            if (output.paths.empty()) continue;
            if (IsPattern(*output.target)) MakeFolderOf(output.paths[index]);
            WriteWhole(output.paths[index], output.make(take));
        }
    } catch (const std::exception& fault) {
        outcome.fault = fault.what();
        if (options.json) outcome.text = FailedJson(file, fault.what());
    }
    return outcome;
}

void Print(const Outcome& outcome) {
    std::cout << outcome.text << std::flush;
    if (!outcome.advice.empty()) ReportError(outcome.advice);
    if (!outcome.fault.empty()) ReportError(outcome.fault);
}

// The plug-in's own output to a device is switched on by its parameters, and the music plays in real time.
void UseDevice(RenderOptions& options) {
    if (options.device.empty()) return;
    const std::uint32_t index = FindDevice(options.device);
    options.settings.parameters.push_back({paramDevice, DeviceValue(static_cast<float>(index))});
    options.settings.parameters.push_back({paramDeviceEnabled, 1.0F});
    options.settings.realTime = true;
    options.settings.ended = [] { return EndSignal() != 0; };
    CatchEndSignals();
    options.jobs = 1;
}

bool FollowsLevels(const RenderOptions& options) {
    if (!options.velocity.empty()) return options.velocity == "follow";
    const auto& set = options.settings.parameters;
    return std::none_of(set.begin(), set.end(),
                        [](const ParameterSetting& setting) { return setting.index == paramVelocity; });
}

// Lines of JSON are printed as their files end, in whatever order; tables in the order of the files.
int RenderFiles(RenderOptions& options) {
    options.files = AllFiles(options);
    for (RenderOutput& output : options.outputs) FindPaths(options.files, output);
    const std::filesystem::path plugin = FindPlugin(options.plugin);
    GuardFiles(options, plugin);
    const PluginModule module(plugin);
    options.settings.ear = ParseEar(options.ear, earOfRecordings, options.parameters.instrument);
    options.settings.parameters = ParseParameters(options.parameters, module, options.settings.ear.ear);
    options.settings.followsLevels = FollowsLevels(options);
    UseDevice(options);
    options.settings.readsAhead = options.jobs == 1 || options.files.size() == 1;
    options.settings.channel = options.mix ? AudioFile::Channel::mix : AudioFile::Channel::first;

    Progress progress(options.files.size());
    RenderQueue queue(options.files.size(), options.jobs, [&](std::size_t file) {
        Outcome outcome = Work(options, module, file, progress);
        progress.Advance(file, 1);
        if (options.json) progress.Aside([&] { Print(outcome); });
        return outcome;
    });
    bool allDone = true;
    for (std::size_t file = 0; file < options.files.size(); ++file) {
        const Outcome outcome = queue.Wait(file);
        allDone = allDone && outcome.fault.empty();
        if (options.json) continue;
        progress.Aside([&] {
            if (file > 0 && !outcome.text.empty()) std::cout << '\n';
            Print(outcome);
        });
    }
    if (EndSignal() != 0) EndBySignal();
    return allDone ? exitDone : exitFailed;
}

// Errors: UsageError.
double ParseTuning(const std::string& text) {
    if (text == "auto") return 0;
    double hertz = 0;
    if (ReadNumber(text, hertz) && hertz >= lowestTuning && hertz <= highestTuning) return hertz;
    throw UsageError("--tuning: \"" + text + "\" is neither auto nor Hz from 415 to 466");
}

void CheckUsage(RenderOptions& options) {
    options.settings.tuning = ParseTuning(options.tuning);
    NoteCleaning& cleaning = options.cleaning;
    if (!options.grid.empty())
        cleaning.gridParts = ParseOption("--quantise", [&] { return ParseGrid(options.grid); });
    cleaning.meter = ParseOption("--meter", [&] { return ParseMeter(options.meter); });
    cleaning.barOne = ParseOption("--bar-one", [&] { return ParseBarOne(options.barOne); });
    if (options.files.empty() && options.list.empty()) throw UsageError("AUDIO is required, or --list");
    if (!options.played.empty() && (options.files.size() != 1 || !options.list.empty()))
        throw UsageError("--played: belongs to one recording");
    if (options.list == "-" && std::count(options.files.begin(), options.files.end(), "-") > 0)
        throw UsageError("--list: standard input is read once only");
    if (options.resume && std::all_of(options.outputs.begin(), options.outputs.end(),
                                      [](const RenderOutput& output) { return !output.target; }))
        throw UsageError("--resume: needs --midi or another output by which a file counts as done");
}

void AddCleaning(CLI::App& command, RenderOptions& options) {
    const CLI::Validator length = NumberFrom(0, 60000);
    command.add_option("--shortest-note", options.cleaning.shortestNote, "leave out notes shorter than this")
        ->type_name("MS")
        ->check(length);
    command
        .add_option("--shortest-gap", options.cleaning.shortestGap,
                    "join notes of one pitch with less than this between them")
        ->type_name("MS")
        ->check(length);
    command
        .add_option("--quantise", options.grid,
                    "move the notes' ends to a grid that starts with bar 1: 1/16, or 1/12 for triplets")
        ->type_name("GRID");
    command
        .add_option("--tempo", options.cleaning.tempo,
                    "quarter notes a minute, of the grid and of the MIDI file")
        ->type_name("BPM")
        ->check(NumberFrom(10, 1000))
        ->capture_default_str();
    command.add_option("--meter", options.meter, "beats of a bar, of the MIDI file: 3/4, 6/8")
        ->type_name("METER")
        ->capture_default_str();
    command
        .add_option("--bar-one", options.barOne,
                    "where bar 1 begins, in seconds of the audio, or auto: with the first note")
        ->type_name("SECONDS")
        ->capture_default_str();
}

}  // namespace

void AddRender(CLI::App& program, Job& chosen) {
    const auto options = std::make_shared<RenderOptions>();
    CLI::App* const command = program.add_subcommand("render", "the notes of recordings");
    command->footer(
        "Prints a table of the notes of each recording; goes on with the next after one that cannot be\n"
        "read. Any audio file that libsndfile reads, at 8000 to 192000 Hz.\n"
        "Exit code 0: all done; 1: a file failed; 2: wrong usage.\n");
    command
        ->add_option("AUDIO", options->files,
                     "recordings, or folders of them; - for a list of names on standard input")
        ->type_name("FILE");
    command
        ->add_option(
            "--list", options->list,
            "hear the files that this one names, one a line or up to each zero byte; - for standard input")
        ->type_name("FILE");
    options->outputs = AllOutputs();
    for (RenderOutput& output : options->outputs)
        command
            ->add_option(output.option, output.target,
                         std::string(output.help) + "; for several recordings a folder,\nwhich gets NAME" +
                             output.extension + " for each, or a pattern with {dir} and {name}")
            ->type_name(output.placeholder);
    command->add_option("--played", options->played, "with --picture: draw what was played behind it")
        ->type_name("FILE.mid");
    command->add_flag("--resume", options->resume,
                      "pass over recordings whose outputs are there and not older than they are");
    AddForce(*command, options->force);
    command->add_flag("--json", options->json,
                      "one JSON object a line for each recording, as it is done, instead of the tables");
    AddEarOptions(*command, options->ear, earOfRecordings);
    command
        ->add_option("--tuning", options->tuning,
                     "Hz of the A above middle C in the recording, 415 to 466, or auto: found in the sound")
        ->type_name("HZ")
        ->capture_default_str();
    command
        ->add_option("--velocity", options->velocity,
                     "follow the music, or set: the same for all; follow unless Velocity is set by --param")
        ->type_name("follow|set")
        ->check(CLI::IsMember({"follow", "set"}).description(""));
    AddParameterOptions(*command, options->parameters);
    AddCleaning(*command, *options);
    command->add_option("--block", options->settings.blockSize, "samples a block")
        ->type_name("N")
        ->check(CLI::Range(1, 1 << 20).description(""))
        ->capture_default_str();
    command->add_flag("--mix", options->mix, "hear the mean of all channels, not the first one");
    command->add_option("--jobs", options->jobs, "files heard at a time; 0 for one on each core")
        ->type_name("N")
        ->capture_default_str();
    command
        ->add_option(
            "--device", options->device,
            "play in real time, and send the notes to this MIDI device; `orva-host devices` lists them")
        ->type_name("NAME");
    command->add_option("--plugin", options->plugin, "the plug-in's file")->type_name("FILE");
    command
        ->add_option("--host-vendor", options->settings.hostVendor,
                     "the host's maker, as reported to the plug-in")
        ->type_name("TEXT")
        ->capture_default_str();
    command->callback([options, &chosen] {
        chosen = [options] {
            CheckUsage(*options);
            return RenderFiles(*options);
        };
    });
}
