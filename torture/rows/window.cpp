// The window under hands that know no rules, and opened and closed without end.
#include <xcb/res.h>
#include <xcb/xtest.h>

#include <clocale>
#include <csignal>
#include <cstdlib>
#include <filesystem>

#include "platform/shell.h"
#include "tests/editor/editor_host.h"
#include "tests/support/await.h"
#include "torture/row.h"

namespace {

// Nothing is opened outside the window.
class NoShell : public IShell {
public:
    NoShell() { SubstituteSystemShell(this); }
    ~NoShell() override { SubstituteSystemShell(nullptr); }
    bool OpenWebPage(const std::string&) override { return true; }
    bool OpenMail(const std::string&) override { return true; }
    bool OpenHelpFile(const std::string&) override { return false; }
};

constexpr int usualKeys = 8, lastKey = 120;  // of an ordinary keyboard, as the display numbers them

// Any button, any key, anywhere in the window or a little outside. Escape closes what stands open at the end.
void SomeInput(Trial& trial, EditorHost& host) {
    const auto fake = [&](unsigned type, std::uint64_t detail, std::int64_t x = 0, std::int64_t y = 0) {
        xcb_test_fake_input(host.connection, static_cast<std::uint8_t>(type),
                            static_cast<std::uint8_t>(detail), 0, host.screen->root,
                            static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), 0);
    };
    switch (trial.Below(8)) {
        case 0:
        case 1:
        case 2:
            fake(XCB_MOTION_NOTIFY, 0, static_cast<std::int64_t>(trial.Below(440)),
                 static_cast<std::int64_t>(trial.Below(360)));
            break;
        case 3:
        case 4: fake(XCB_BUTTON_PRESS, 1 + trial.Below(trial.OneIn(4) ? 9 : 1)); break;
        case 5:
        case 6: fake(XCB_BUTTON_RELEASE, 1 + trial.Below(trial.OneIn(4) ? 9 : 1)); break;
        default: {
            const std::uint64_t key = usualKeys + 1 + trial.Below(lastKey - usualKeys);
            fake(XCB_KEY_PRESS, key);
            fake(XCB_KEY_RELEASE, key);
        }
    }
    host.Sync();
}

void TryRandomInput(Trial& trial) {
    const NoShell shell;
    const DisplayServer display;
    setenv("PATH", "/nowhere", 1);  // and no file dialog
    EditorHost host;
    host.plugin.setParameter(92, 2.0F + static_cast<float>(trial.number % 4));
    trial.Require(host.Open(), "the window does not open");
    for (int i = 0; i < 10; ++i) host.Idle();
    for (int event = 0; event < 500; ++event) {
        SomeInput(trial, host);
        if (trial.OneIn(2)) host.Idle();
        if (trial.OneIn(50)) host.plugin.setParameter(92, 2.0F + static_cast<float>(trial.Below(4)));
        if (trial.OneIn(100)) host.Call(effEditClose), host.Open();
    }
    host.Idle();
    for (const auto& [index, value] : host.automated) {
        const float lowest = index == 92 ? 2.0F : 0.0F, highest = index == 92 ? 5.0F : 1.0F;
        trial.Require(index >= 0 && index < 96 && value >= lowest && value <= highest,
                      "the host was told " + std::to_string(index) + " = " + std::to_string(value));
    }
    for (std::int32_t index = 0; index < 88; ++index) {  // those which nobody else sets
        const std::vector<float> told = host.ToldOf(index);
        trial.Require(told.empty() || host.plugin.getParameter(index) == told.back(),
                      "not what the host was told");
    }
    Trial::Figure("changes told", static_cast<double>(host.automated.size()));
}

std::size_t Entries(const char* folder) {
    const std::filesystem::directory_iterator listing(folder);
    return static_cast<std::size_t>(std::distance(begin(listing), end(listing)));
}

std::uint32_t Clients(EditorHost& host) {
    std::unique_ptr<xcb_res_query_clients_reply_t, void (*)(void*)> reply(
        xcb_res_query_clients_reply(host.connection, xcb_res_query_clients(host.connection), nullptr), &free);
    return reply ? reply->num_clients : 0;
}

// What belongs to the whole process and no plug-in may change.
struct ProcessState {
    std::string locale = setlocale(LC_ALL, nullptr);
    std::string folder = std::filesystem::current_path();
    std::vector<void (*)(int)> handlers;
    std::vector<bool> blocked;
    std::vector<std::string> environment;

    ProcessState() {
        sigset_t mask;
        pthread_sigmask(SIG_SETMASK, nullptr, &mask);
        for (int number = 1; number < 32; ++number) {
            struct sigaction action {};
            sigaction(number, nullptr, &action);
            handlers.push_back(action.sa_handler);
            blocked.push_back(sigismember(&mask, number) == 1);
        }
        for (char** entry = environ; *entry != nullptr; ++entry) environment.emplace_back(*entry);
    }
    bool operator==(const ProcessState&) const = default;
};

void TryCycles(Trial& trial) {
    const DisplayServer display;
    EditorHost host;
    host.plugin.resume();
    const ProcessState before;
    std::uint32_t clients = 0;
    std::size_t files = 0, threads = 0;
    std::vector<float> audio(441);
    for (int cycle = 0; cycle < 250; ++cycle) {
        trial.Require(host.Open(), "the window does not open, cycle " + std::to_string(cycle));
        for (float& sample : audio) sample = static_cast<float>(trial.Below(1000)) / 2000.0F;
        float* block = audio.data();
        for (int i = 0; i < 4; ++i) host.Idle(), host.plugin.processReplacing(&block, &block, 441);
        host.Call(effEditClose);
        host.Sync();
        // The text library's first threads may still be about to end, and have files open.
        if (cycle == 1)
            clients = Clients(host), files = Entries("/proc/self/fd"), threads = Entries("/proc/self/task");
    }
    trial.Require(clients != 0 && Clients(host) == clients, "a connection to the display has stayed");
    trial.Require(AwaitThat([&] { return Entries("/proc/self/fd") <= files; }), "an open file has stayed");
    trial.Require(AwaitThat([&] { return Entries("/proc/self/task") <= threads; }), "a thread has stayed");
    trial.Require(ProcessState() == before, "locale, signals, environment or folder have changed");
}

const Registered randomInput({"EDI-6", "takes any mouse and key, and tells the host only what it keeps",
                              inRelease | inAddress, 100, 1, 60, TryRandomInput});
const Registered cycles({"EDI-1",
                         "opens and closes without end, leaving nothing and changing nothing of the process",
                         inRelease | inAddress, 8, 1, 120, TryCycles});

}  // namespace
