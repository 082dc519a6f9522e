#include "tools/host/commands/render.h"

#include <filesystem>
#include <iostream>
#include <memory>
#include <vector>

#include "tools/host/output_file.h"
#include "tools/host/plugin_facts.h"
#include "tools/host/progress.h"
#include "tools/host/render_queue.h"
#include "tools/host/take_output.h"

namespace {

struct RenderOptions {
    std::vector<std::string> files;
    std::string events;  // empty: none are written
    bool json = false;
    bool mix = false;
    std::vector<std::string> parameters;  // NAME=VALUE
    std::string plugin;                   // empty: the usual places
    unsigned jobs = 1;                    // 0: one for each core
    RenderSettings settings;
};

std::vector<std::filesystem::path> EventPaths(const RenderOptions& options) {
    if (options.events.empty()) return std::vector<std::filesystem::path>(options.files.size());
    try {
        return OutputPaths(options.files, options.events, ".csv");
    } catch (const std::invalid_argument& reason) {
        throw UsageError(std::string("--events: ") + reason.what());
    }
}

std::vector<ParameterSetting> Parameters(const RenderOptions& options, const PluginModule& module) {
    std::vector<ParameterSetting> settings;
    if (options.parameters.empty()) return settings;
    const std::vector<std::string> names = ParameterNames(module);
    try {
        for (const std::string& text : options.parameters) settings.push_back(ParseParameter(text, names));
    } catch (const std::invalid_argument& reason) {
        throw UsageError(std::string("--param: ") + reason.what());
    }
    return settings;
}

// Prints what became of a file and writes what is asked for; false if anything failed.
bool Deliver(const RenderOptions& options, std::size_t index, const Outcome& outcome,
             const std::filesystem::path& events) {
    const std::string& file = options.files[index];
    if (!outcome.fault.empty()) {
        ReportError(file, outcome.fault);
        return false;
    }
    if (!options.json && index > 0) std::cout << '\n';
    std::cout << (options.json ? NoteJson(file, outcome.take) : NoteTable(file, outcome.take)) << std::flush;
    try {
        if (!events.empty()) WriteWhole(events, EventCsv(outcome.take));
    } catch (const std::exception& fault) {
        ReportError(fault.what());
        return false;
    }
    return true;
}

int RenderFiles(RenderOptions& options) {
    const std::vector<std::filesystem::path> events = EventPaths(options);
    const PluginModule module(FindPlugin(options.plugin));
    options.settings.parameters = Parameters(options, module);
    options.settings.channel = options.mix ? AudioFile::Channel::mix : AudioFile::Channel::first;

    bool allDone = true;
    Progress progress(options.files.size());
    RenderQueue queue(module, options.files, options.settings, options.jobs, progress);
    for (std::size_t file = 0; file < options.files.size(); ++file) {
        const Outcome outcome = queue.Wait(file);
        progress.Aside([&] { allDone = Deliver(options, file, outcome, events[file]) && allDone; });
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
    command
        ->add_option("--events", options->events,
                     "also write all MIDI events as CSV; an existing folder gets NAME.csv for each\n"
                     "recording, and must be given when there are several")
        ->type_name("OUT.csv");
    command->add_flag("--json", options->json,
                      "one JSON object a line for each recording instead of the tables");
    command
        ->add_option("--param", options->parameters,
                     "set a parameter by its name or index, 0 to 1; repeatable")
        ->type_name("NAME=VALUE")
        ->allow_extra_args(false);
    command->add_option("--block", options->settings.blockSize, "samples a block")
        ->type_name("N")
        ->check(CLI::Range(1, 1 << 20).description(""))
        ->capture_default_str();
    command->add_flag("--mix", options->mix, "hear the mean of all channels, not the first one");
    command->add_option("--jobs", options->jobs, "files heard at a time; 0 for one on each core")
        ->type_name("N")
        ->capture_default_str();
    command->add_option("--plugin", options->plugin, "the plug-in's file")->type_name("FILE");
    command
        ->add_option("--host-vendor", options->settings.hostVendor, "the maker that the plug-in is told of")
        ->type_name("TEXT")
        ->capture_default_str();
    command->callback([options, &chosen] { chosen = [options] { return RenderFiles(*options); }; });
}
