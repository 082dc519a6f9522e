#include "tools/host/commands/render.h"

#include <filesystem>
#include <iostream>
#include <memory>
#include <vector>

#include "notes/notes.h"
#include "tools/host/commands/devices.h"
#include "tools/host/commands/parameters.h"
#include "tools/host/output_file.h"
#include "tools/host/picture.h"
#include "tools/host/progress.h"
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
    std::string (*make)(const Take& take);
    std::string target = {};                        // empty: none is written
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
    return {{"--midi", ".mid", "OUT.mid", "also write the notes as a MIDI file", MidiBytes},
            {"--score", ".tnotes", "OUT.tnotes", "also write the notes as a stored score", ScoreBytes},
            {"--picture", ".png", "OUT.png", "also draw a piano roll", PianoRoll},
            {"--events", ".csv", "OUT.csv", "also write all MIDI events as CSV", EventCsv}};
}

struct RenderOptions {
    std::vector<std::string> files;
    std::vector<RenderOutput> outputs;
    bool json = false;
    bool mix = false;
    std::vector<std::string> parameters;  // NAME=VALUE
    std::string plugin;                   // empty: the usual places
    std::string device;                   // empty: none
    unsigned jobs = 1;                    // 0: one for each core
    RenderSettings settings;
};

void FindPaths(const std::vector<std::string>& files, RenderOutput& output) {
    if (output.target.empty()) return;
    try {
        output.paths = OutputPaths(files, output.target, output.extension);
    } catch (const std::invalid_argument& reason) {
        throw UsageError(std::string(output.option) + ": " + reason.what());
    }
}

// Prints what became of a file and writes what is asked for; false if anything failed.
bool Deliver(const RenderOptions& options, std::size_t index, const Outcome& outcome) {
    const std::string& file = options.files[index];
    if (!outcome.fault.empty()) {
        ReportError(file, outcome.fault);
        return false;
    }
    if (!options.json && index > 0) std::cout << '\n';
    std::cout << (options.json ? NoteJson(file, outcome.take) : NoteTable(file, outcome.take)) << std::flush;
    try {
        for (const RenderOutput& output : options.outputs)
            if (!output.paths.empty()) WriteWhole(output.paths[index], output.make(outcome.take));
    } catch (const std::exception& fault) {
        ReportError(fault.what());
        return false;
    }
    return true;
}

// The plug-in's own output to a device is switched on by its parameters, and the music plays in real time.
void UseDevice(RenderOptions& options) {
    if (options.device.empty()) return;
    const std::uint32_t index = FindDevice(options.device);
    options.settings.parameters.push_back({88, static_cast<float>(index) * 0.01F});
    options.settings.parameters.push_back({89, 1.0F});
    options.settings.realTime = true;
    options.jobs = 1;
}

int RenderFiles(RenderOptions& options) {
    for (RenderOutput& output : options.outputs) FindPaths(options.files, output);
    const PluginModule module(FindPlugin(options.plugin));
    options.settings.parameters = ParseParameters(options.parameters, module);
    UseDevice(options);
    options.settings.channel = options.mix ? AudioFile::Channel::mix : AudioFile::Channel::first;

    bool allDone = true;
    Progress progress(options.files.size());
    RenderQueue queue(module, options.files, options.settings, options.jobs, progress);
    for (std::size_t file = 0; file < options.files.size(); ++file) {
        const Outcome outcome = queue.Wait(file);
        progress.Aside([&] { allDone = Deliver(options, file, outcome) && allDone; });
    }
    return allDone ? exitDone : exitFailed;
}

}  // namespace

void AddRender(CLI::App& program, Job& chosen) {
    const auto options = std::make_shared<RenderOptions>();
    CLI::App* const command = program.add_subcommand("render", "the notes of recordings");
    command->footer(
        "Prints a table of the notes of each recording; goes on with the next after one that cannot be\n"
        "read. Any audio file that libsndfile reads, at 8000 to 192000 Hz.\n"
        "Exit code 0: all done; 1: a file failed; 2: wrong usage.\n");
    command->add_option("AUDIO", options->files, "recordings")->required()->type_name("FILE");
    options->outputs = AllOutputs();
    for (RenderOutput& output : options->outputs)
        command
            ->add_option(output.option, output.target,
                         std::string(output.help) + "; an existing folder gets NAME" + output.extension +
                             " for each\nrecording, and must be given when there are several")
            ->type_name(output.placeholder);
    command->add_flag("--json", options->json,
                      "one JSON object a line for each recording instead of the tables");
    AddParameterOption(*command, options->parameters);
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
        ->add_option("--host-vendor", options->settings.hostVendor, "the maker that the plug-in is told of")
        ->type_name("TEXT")
        ->capture_default_str();
    command->callback([options, &chosen] { chosen = [options] { return RenderFiles(*options); }; });
}
