#include <algorithm>
#include <chrono>
#include <cmath>
#include <iostream>
#include <memory>
#include <optional>
#include <thread>
#include <vector>

#include "parameters/parameters.h"
#include "tools/host/audio_file.h"
#include "tools/host/commands/command.h"
#include "tools/host/editor_window.h"
#include "tools/host/end_signal.h"
#include "tools/host/hosted_plugin.h"

namespace {

constexpr std::int32_t usualRate = 48000;  // Hz, where nothing is played
constexpr std::size_t samplesPerBlock = 512;
const std::vector<std::string> pages = {"main", "equalizer", "options", "about"};

struct EditOptions {
    std::string plugin;
    std::string audio;   // empty: silence
    std::string page;    // of shot
    std::string target;  // of shot
    double at = 3;       // s of music before the picture is taken
    double scale = 0;    // of the window; 0: the user's own
    bool dark = false;   // false: as the user prefers
    bool chords = false;
    bool force = false;  // of shot
};

// Plays a file through an instance in real time, a little whenever it is asked to.
class Player {
public:
    explicit Player(const EditOptions& options) : module(FindPlugin(options.plugin)) {
        if (!options.audio.empty()) audio.emplace(options.audio, AudioFile::Channel::first);
        plugin.emplace(module, audio ? audio->Rate() : usualRate, "ORVA", nullptr);
        if (options.dark) plugin->SetWindowDark();
        plugin->Start(static_cast<std::int32_t>(samplesPerBlock));
    }
    HostedPlugin& Plugin() { return *plugin; }

    // What has become due since the last call.
    void Continue() {
        PlayTo(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    // As far as that many seconds; after the end of the file, silence.
    void PlayTo(double seconds) {
        const std::int32_t rate = audio ? audio->Rate() : usualRate;
        while (static_cast<double>(plugin->SamplesDelivered()) < seconds * rate) {
            std::vector<float> samples(samplesPerBlock);
            if (audio) audio->Read(samples.data(), samplesPerBlock);
            plugin->Process(samples.data(), static_cast<std::int32_t>(samplesPerBlock));
        }
    }

private:
    const PluginModule module;
    std::optional<AudioFile> audio;
    std::optional<HostedPlugin> plugin;
    const std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
};

int Edit(const EditOptions& options) {
    CatchEndSignals();  // a window that closes takes the files along that were dragged out of it
    {
        Player player(options);
        if (options.chords) player.Plugin().SetParameter(paramChordsEnabled, 1.0F);
        EditorWindow window(player.Plugin(), "ORVA Audio To MIDI", options.scale);
        window.Run([&] {
            player.Continue();
            return EndSignal() == 0;
        });
    }
    if (EndSignal() != 0) EndBySignal();
    return exitDone;
}

int Shot(const EditOptions& options) {
    const auto page = std::find(pages.begin(), pages.end(), options.page);
    Guard({{"OUT", options.target, pictureFirstBytes}}, {options.audio}, options.force);
    Player player(options);
    player.Plugin().SetParameter(paramActivePage, PageValue(static_cast<std::int32_t>(page - pages.begin())));
    if (options.chords) player.Plugin().SetParameter(paramChordsEnabled, 1.0F);
    EditorWindow window(player.Plugin(), "ORVA Audio To MIDI", options.scale);
    // However busy the machine: the window takes one column a call, if the last was 50 ms ago, and plays the
    // same in each.
    constexpr double column = 0.05;  // s
    constexpr std::chrono::milliseconds pause{51};
    const auto columns = static_cast<int>(std::ceil(options.at / column));
    int played = 0;
    const auto playColumn = [&] { return player.PlayTo(++played * column), played <= columns; };
    window.Run(playColumn, pause);
    std::this_thread::sleep_for(10 * pause);  // the display draws on its own
    WriteWhole(options.target, window.Picture());
    return exitDone;
}

void AddCommon(CLI::App& command, EditOptions& options) {
    command.add_option("--play", options.audio, "a recording to hear, in real time")->type_name("AUDIO");
    command.add_flag("--chords", options.chords, "with the chord display on");
    command.add_option("--scale", options.scale, "size of the window: 1, 1.5, 2 or 3 times its own")
        ->check(CLI::IsMember({1.0, 1.5, 2.0, 3.0}))
        ->type_name("SCALE");
    command.add_flag("--dark", options.dark, "a dark window");
    command.add_option("--plugin", options.plugin, "the plug-in's file")->type_name("FILE");
}

}  // namespace

void AddEdit(CLI::App& program, Job& chosen) {
    const auto options = std::make_shared<EditOptions>();
    CLI::App* const command = program.add_subcommand("edit", "the plug-in's window");
    AddCommon(*command, *options);
    command->callback([options, &chosen] { chosen = [options] { return Edit(*options); }; });
}

void AddShot(CLI::App& program, Job& chosen) {
    const auto options = std::make_shared<EditOptions>();
    CLI::App* const command = program.add_subcommand("shot", "a picture of a page of the plug-in's window");
    command->add_option("PAGE", options->page, "main, equalizer, options or about")
        ->required()
        ->check(CLI::IsMember(pages));
    command->add_option("OUT", options->target, "the picture to write")->required()->type_name("OUT.png");
    AddCommon(*command, *options);
    AddForce(*command, options->force);
    command->add_option("--at", options->at, "seconds of music before it is taken")
        ->check(NumberFrom(0, 3600))
        ->type_name("SECONDS")
        ->capture_default_str();
    command->callback([options, &chosen] { chosen = [options] { return Shot(*options); }; });
}
