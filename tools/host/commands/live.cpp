#include <chrono>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <thread>

#include "notes/notes.h"
#include "tools/host/commands/command.h"
#include "tools/host/commands/ear_options.h"
#include "tools/host/commands/parameters.h"
#include "tools/host/editor_window.h"
#include "tools/host/end_signal.h"
#include "tools/host/live_client.h"
#include "tools/host/live_plugin.h"
#include "tools/host/live_take.h"
#include "tools/host/live_view.h"
#include "tools/host/score_output.h"

namespace {

using Clock = std::chrono::steady_clock;
constexpr auto lookPause = std::chrono::milliseconds(33);
constexpr auto retryPause = std::chrono::milliseconds(500);  // between two attempts at server or connection
constexpr auto savePause = std::chrono::seconds(10);

constexpr char earOfLive[] = "live";

struct LiveOptions {
    std::string name = "orva";
    std::string server;                     // empty: the usual one
    bool connect = false;                   // the input, to `source`
    std::string source;                     // empty: the first that is there
    std::vector<std::string> destinations;  // of the notes
    ParameterTexts parameters;
    EarTexts ear;
    std::string plugin;  // empty: the usual places
    std::string midi;    // empty: no file
    bool list = false;
    bool window = true;
    bool force = false;
};

// A session from the first connection to the signal, whatever becomes of the server meanwhile.
class LiveSession {
public:
    LiveSession(const LiveOptions& wanted, const PluginModule& module,
                const std::vector<ParameterSetting>& parameters, const EarSettings& ear)
        : options(wanted), client(std::make_unique<LiveClient>(wanted.name, wanted.server)) {
        plugin = std::make_unique<LivePlugin>(module, client->Rate(), client->Period(), parameters, ear);
        take.Begin(client->Rate(), 0);
        client->Activate(*plugin);
        SaveTake();
        Connect();
        if (!missing.empty())
            throw std::runtime_error(missing + ": cannot be connected; orva-host live --list lists what can");
    }
    LiveSession(const LiveSession&) = delete;
    LiveSession& operator=(const LiveSession&) = delete;

    HostedPlugin& Plugin() { return plugin->Plugin(); }
    std::string Heading() const {
        return client->Name() + ": " + std::to_string(client->Rate()) + " Hz, periods of " +
               std::to_string(client->Period()) + " samples";
    }
    const std::string& Source() const { return heard; }  // that was found without a name; may be empty
    void UseView() { view.emplace(); }

    // What is to be done every now and then; false when the end is wanted, or nobody reads on.
    bool Continue() {
        Collect();
        if (view) view->Show(static_cast<double>(Plugin().SamplesDelivered()) / plugin->Rate());
        if (client != nullptr && client->HasGone()) {
            client.reset();
            Say("the JACK server has gone; waiting for it to come back");
        }
        if (Clock::now() >= nextSave) SaveNow();
        if (Clock::now() >= nextAttempt) {
            if (client == nullptr) ComeBack();
            if (client != nullptr && !missing.empty()) Connect();
            nextAttempt = Clock::now() + retryPause;
        }
        return EndSignal() == 0 && std::cout.good();
    }

    // The last notes end, and their ends still leave.
    void End() {
        plugin->Stop();
        if (client != nullptr) {
            AwaitPeriods([this] { return plugin->AllSent(); });
            // The period that wrote them, and two more in which every reader had them.
            const std::uint64_t until = plugin->Periods() + 3;
            AwaitPeriods([this, until] { return plugin->Periods() >= until; });
        }
        client.reset();
        Collect();
        view.reset();
        if (plugin->Lost() > 0)
            ReportError(std::to_string(plugin->Lost()) + " messages lost: too many at once");
        SaveTake();
    }

    // The take so far, with what sounds now ended, so that a program that is killed leaves it behind, too.
    void SaveTake() {
        nextSave = Clock::now() + savePause;
        if (options.midi.empty()) return;
        take.End(Plugin().SamplesDelivered());
        const auto score = std::make_unique<TNotes>();
        TakeToScore(take.Whole(), *score);
        WriteWhole(options.midi, MidiFileBytes(*score));
    }

private:
    void Say(const std::string& text) {
        if (view) view->ClearLine();
        ReportError(text);
    }

    // A disk that is full for a while does not end the session.
    void SaveNow() {
        try {
            SaveTake();
        } catch (const std::exception& fault) {
            Say(fault.what());
        }
    }

    void Collect() {
        for (TimedEvent event; plugin->Next(event);) {
            if (view) view->Take(event);
            if (!options.midi.empty()) take.Add(event);
        }
    }

    void ComeBack() {
        try {
            client = std::make_unique<LiveClient>(options.name, options.server);
            take.Begin(client->Rate(), Plugin().SamplesDelivered());
            plugin->Change(client->Rate(), client->Period());
            client->Activate(*plugin);
        } catch (const ServerFault&) {
            client.reset();
            return;
        }
        Connect();
        Say("the JACK server is back");
    }

    // Leaves the first port that cannot be connected in `missing`.
    void Connect() {
        missing.clear();
        if (options.connect && options.source.empty())
            HearFirstSource();
        else if (options.connect && !client->Hear(options.source))
            missing = options.source;
        for (const std::string& destination : options.destinations)
            if (!client->PlayTo(destination) && missing.empty()) missing = destination;
    }

    // Never a monitor: what is heard would be what the machine plays.
    void HearFirstSource() {
        for (const std::string& source : client->Ports().sources)
            if (client->Hear(source)) {
                if (!heard.empty() && source != heard) Say("hearing " + source);
                heard = source;
                return;
            }
        missing = "an audio source";
    }

    template <typename Condition>
    void AwaitPeriods(Condition isMet) const {
        const auto timeout = Clock::now() + std::chrono::seconds(1);  // for a server that stands still
        while (!isMet() && !client->HasGone() && Clock::now() < timeout)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }

    const LiveOptions& options;
    std::unique_ptr<LivePlugin> plugin;
    std::unique_ptr<LiveClient> client;  // uses the plug-in; null while there is no server
    std::optional<LiveView> view;
    LiveTake take;
    std::string missing;  // a port to be connected as soon as it is there
    std::string heard;    // the source that was found where none was named
    Clock::time_point nextAttempt = Clock::now() + retryPause;
    Clock::time_point nextSave;
};

// The window; null without a display.
std::unique_ptr<EditorWindow> OpenWindow(LiveSession& session) {
    try {
        return std::make_unique<EditorWindow>(session.Plugin(), "ORVA Audio To MIDI");
    } catch (const std::runtime_error&) {
        return nullptr;  // no display, or no window: the terminal shows what is heard
    }
}

int ListPorts(const LiveOptions& options) {
    const ServerPorts ports = LiveClient(options.name, options.server).Ports();
    std::cout << "audio to hear (--connect)\n";
    for (const std::string& port : ports.sources)
        std::cout << "  " << port << (port == ports.sources.front() ? "  (taken where none is named)" : "")
                  << '\n';
    for (const std::string& port : ports.monitors) std::cout << "  " << port << '\n';
    std::cout << "MIDI to play to (--midi-to)\n";
    for (const std::string& port : ports.destinations) std::cout << "  " << port << '\n';
    return exitDone;
}

int Live(const LiveOptions& options) {
    CatchEndSignals();
    if (options.list) return ListPorts(options);
    const std::filesystem::path plugin = FindPlugin(options.plugin);
    if (!options.midi.empty()) {
        Guard({{"--midi", options.midi, midiFirstBytes}}, {plugin}, options.force);
        CheckFolderOf(options.midi);
    }
    const PluginModule module(plugin);
    const EarSettings ear = ParseEar(options.ear, earOfLive, options.parameters.instrument);
    LiveSession session(options, module, ParseParameters(options.parameters, module, ear.ear), ear);
    std::unique_ptr<EditorWindow> window = options.window ? OpenWindow(session) : nullptr;
    std::cout << session.Heading() << std::endl;
    if (!session.Source().empty()) std::cout << "hearing " << session.Source() << std::endl;
    if (window) {
        window->Run([&] { return session.Continue(); });
        window.reset();
    } else {
        session.UseView();
        while (session.Continue()) std::this_thread::sleep_for(lookPause);
    }
    session.End();
    return exitDone;
}

}  // namespace

void AddLive(CLI::App& program, Job& chosen) {
    const auto options = std::make_shared<LiveOptions>();
    CLI::App* const command = program.add_subcommand("live", "the notes of what you play, as you play it");
    command->footer(
        "A client of a JACK server, or of PipeWire, with an audio input, the same audio as output, and the\n"
        "notes as MIDI output. Shows the plug-in's window, or where there is no display, notes and chord in\n"
        "the terminal. Waits for a server that has gone, and connects again. Ends on a signal (Ctrl-C).\n");
    CLI::Option* const connect =
        command
            ->add_option("--connect", options->source,
                         "hear this audio port; without a name the first microphone, line or program")
            ->type_name("PORT")
            ->expected(0, 1);
    command->add_option("--midi-to", options->destinations, "send the notes to this MIDI port; repeatable")
        ->type_name("PORT")
        ->allow_extra_args(false);
    command->add_flag("--list", options->list, "list the ports that can be connected, and end");
    command->add_option("--name", options->name, "the client's name")
        ->type_name("NAME")
        ->capture_default_str();
    command->add_option("--server", options->server, "the JACK server's name")->type_name("NAME");
    AddEarOptions(*command, options->ear, earOfLive);
    AddParameterOptions(*command, options->parameters);
    command
        ->add_option("--midi", options->midi,
                     "write the notes as a MIDI file, anew every ten seconds and at the end")
        ->type_name("OUT.mid");
    AddForce(*command, options->force);
    command->add_flag("!--no-window", options->window, "the terminal, even where there is a display");
    command->add_option("--plugin", options->plugin, "the plug-in's file")->type_name("FILE");
    command->callback([options, connect, &chosen] {
        options->connect = connect->count() > 0;
        chosen = [options] { return Live(*options); };
    });
}
