// The window in the hands of hosts that call in any order, lose their own windows or the whole display, and
// use all their threads at once.
#include <malloc.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>

#include "tests/editor/editor_host.h"
#include "tests/support/tones.h"
#include "torture/row.h"

namespace {

// A host's audio thread for as long as this lives: three sines, so that notes and a chord are heard.
class Audio {
public:
    explicit Audio(CORVAguivstEx& plugin) : thread([this, &plugin] { Run(plugin); }) {}
    ~Audio() {
        stop = true;
        thread.join();
    }
    Audio(const Audio&) = delete;
    Audio& operator=(const Audio&) = delete;

    // That it comes through its next blocks, unchanged. Waits for as long as that takes.
    void RequireGoesOn(const Trial& trial) const {
        for (const long now = blocks; blocks < now + 3;) std::this_thread::yield();
        trial.Require(whole, "a block came out changed");
    }

private:
    void Run(CORVAguivstEx& plugin) {
        constexpr std::int32_t size = 441;
        std::vector<float> out(size);
        for (std::size_t played = 0; !stop; played += size) {
            std::vector<float> in = Chord({57, 61, 64}, size, played);
            float* from = in.data();
            float* to = out.data();
            plugin.processReplacing(&from, &to, size);
            if (std::memcmp(in.data(), out.data(), size * sizeof(float)) != 0) whole = false;
            ++blocks;
        }
    }
    std::atomic<bool> stop{false}, whole{true};
    std::atomic<long> blocks{0};
    std::thread thread;
};

// The plug-in's own connection may lag behind the host's.
bool Become(EditorHost& host, xcb_window_t window, std::size_t children) {
    for (int round = 0; round < 1000 && host.Children(window).size() != children; ++round)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return host.Children(window).size() == children;
}

// What a window that has just been opened looks like, all but the picture that never rests.
std::vector<std::uint8_t> Fresh(EditorHost& host) {
    host.Settle();
    return host.Pixels(0, 0, 267, 320);
}

// --- any order of calls ---

void TryCalls(Trial& trial) {
    const DisplayServer display;
    EditorHost host;
    const Audio audio(host.plugin);
    const xcb_window_t first = host.parent;
    host.MakeParent();
    const xcb_window_t second = host.parent;
    host.MakeParent();
    const xcb_window_t gone = host.parent;
    xcb_destroy_window(host.connection, gone);
    host.Sync();
    const xcb_setup_t* const setup = xcb_get_setup(host.connection);
    auto screens = xcb_setup_roots_iterator(setup);
    xcb_screen_next(&screens);
    const std::array<xcb_window_t, 3> useless = {0, gone, screens.data->root};  // none, a dead one, elsewhere

    xcb_window_t shown = 0;  // the window that holds the editor
    for (int call = 0; call < 60; ++call) {
        switch (trial.Below(7)) {
            case 0:
            case 1: {
                shown = trial.OneIn(2) ? first : second;
                trial.Require(host.Open(shown), "does not open in a window of the host's");
                break;
            }
            case 2:
                shown = 0;  // what was open is closed before the next is tried
                trial.Require(!host.Open(useless[trial.Below(useless.size())]), "opened in no window");
                break;
            case 3: shown = 0, host.Call(effEditClose); break;
            case 4: host.Idle(); break;
            case 5: {
                const auto key = static_cast<std::intptr_t>(trial.Below(60));
                const std::int32_t opcode = trial.OneIn(2) ? effEditKeyDown : effEditKeyUp;
                const bool taken = host.Call(opcode, static_cast<std::int32_t>(trial.Below(128)), key) != 0;
                trial.Require(shown != 0 || !taken, "a key was taken without a window");
                break;
            }
            default: {
                ERect* rect = nullptr;
                trial.Require(host.Call(effEditGetRect, 0, 0, &rect) != 0 && rect != nullptr, "no size");
                trial.Require(rect->left == 0 && rect->top == 0 && rect->right == 400 && rect->bottom == 320,
                              "the size is not that of the window's picture");
            }
        }
        trial.Require(
            Become(host, first, shown == first ? 1 : 0) && Become(host, second, shown == second ? 1 : 0),
            "not one editor in the window that was opened last");
    }
    audio.RequireGoesOn(trial);
}

// --- windows and displays that go ---

void Resize(EditorHost& host, std::uint32_t size) {
    const std::uint32_t values[] = {size, size};
    xcb_configure_window(host.connection, host.parent, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
                         values);
}

void TryParents(Trial& trial) {
    const DisplayServer display;
    EditorHost host;
    const Audio audio(host.plugin);
    trial.Require(host.Open(), "the window does not open");
    const std::vector<std::uint8_t> fresh = Fresh(host);
    std::vector<float> values;
    for (std::int32_t i = 0; i < 96; ++i) values.push_back(host.plugin.getParameter(i));
    const xcb_window_t parent = host.parent;
    switch (trial.number % 5) {
        case 0: xcb_destroy_window(host.connection, parent); break;
        case 1:
            host.MakeParent();
            xcb_reparent_window(host.connection, parent, host.parent, 10, 10);
            break;
        case 2: xcb_unmap_window(host.connection, parent); break;
        case 3: Resize(host, 1); break;
        default: Resize(host, 32767); break;
    }
    host.Sync();
    const std::uint64_t idles = trial.Below(40);
    for (std::uint64_t i = 0; i < idles; ++i) {
        host.plugin.setParameter(static_cast<std::int32_t>(trial.Below(96)), 0.5F);
        host.Idle();
    }
    audio.RequireGoesOn(trial);
    if (trial.OneIn(2)) host.Call(effEditClose);  // or the next open closes it
    for (std::int32_t i = 0; i < 96; ++i) host.plugin.setParameter(i, values[static_cast<std::size_t>(i)]);
    host.MakeParent();
    trial.Require(host.Open(), "the window does not open again");
    trial.Require(Fresh(host) == fresh, "the next window does not look as the first did");
}

// The display goes, or was never there, or has no room or no letters. What must not happen is that the host
// goes, too.
void TryDisplays(Trial& trial) {
    const std::uint64_t fault = trial.number % 5;
    if (fault == 3) setenv("FONTCONFIG_FILE", "/dev/null", 1);  // no fonts, for this process
    DisplayServer display;
    EditorHost host;
    const Audio audio(host.plugin);
    const std::string there = getenv("DISPLAY");
    bool opens = false;
    std::vector<xcb_connection_t*> others;
    switch (fault) {
        case 0: {
            trial.Require(host.Open(), "the window does not open");
            const std::uint64_t idles = trial.Below(20);
            for (std::uint64_t i = 0; i < idles; ++i) host.Idle();
            display.End();
            break;
        }
        case 1: unsetenv("DISPLAY"); break;
        case 2:
            setenv("DISPLAY", std::array{"", ":4711", "nowhere.example:0", ":0.77", "x"}[trial.Below(5)], 1);
            break;
        case 3: opens = true; break;
        default:  // until the display takes no more
            while (others.empty() || xcb_connection_has_error(others.back()) == 0)
                others.push_back(xcb_connect(nullptr, nullptr));
    }
    for (int i = 0; i < 10; ++i) host.Idle();
    trial.Require(host.Open() == opens, opens ? "does not open without fonts" : "opened on no display");
    for (int i = 0; i < 10; ++i) host.Idle();
    audio.RequireGoesOn(trial);
    for (xcb_connection_t* const other : others) xcb_disconnect(other);
    if (fault == 0) return;
    setenv("DISPLAY", there.c_str(), 1);
    trial.Require(host.Await([&] { return host.Open(); }), "does not open on a good display afterwards");
}

// --- three threads ---

void TryThreads(Trial& trial) {
    const DisplayServer display;
    EditorHost host;
    host.plugin.setParameter(93, 1.0F);  // the chord is heard and shown
    const Audio audio(host.plugin);
    std::atomic<bool> done{false};
    std::thread automation([&, seed = static_cast<unsigned>(trial.random())] {
        std::minstd_rand random(seed);
        for (int i = 0; i < 20000; ++i) {
            auto index = static_cast<std::int32_t>(random() % 94);
            if (index >= 88) index += 2;  // no device, which would bring up a message
            host.plugin.setParameter(index, static_cast<float>(i % 101) / 100);
        }
        for (std::int32_t i = 0; i < 88; ++i)
            host.plugin.setParameter(i, static_cast<float>(random() % 101) / 100);
        host.plugin.setParameter(92, 2.0F + static_cast<float>(random() % 3));
        done = true;
    });
    trial.Require(host.Open(), "the window does not open");
    for (int round = 0; !done || round < 30; ++round) {
        host.Idle();
        if (!trial.OneIn(20)) continue;
        host.Call(effEditClose);
        trial.Require(host.Open(), "the window does not open beside the other threads");
    }
    automation.join();
    audio.RequireGoesOn(trial);
    host.Idle();  // takes what is waiting
    const std::vector<std::uint8_t> shown = Fresh(host);
    host.Call(effEditClose);
    trial.Require(host.Open(), "the window does not open at the end");  // and reads everything anew
    trial.Require(Fresh(host) == shown, "the window did not show what was set last");
}

// --- eight windows, and one that stays open ---

// How the window of another instance with the same values looks when it is opened.
std::vector<std::uint8_t> Expected(EditorHost& host, EditorHost& other) {
    other.Call(effEditClose);
    for (std::int32_t i = 0; i < 96; ++i)
        if (i != 88 && i != 89) other.plugin.setParameter(i, host.plugin.getParameter(i));
    other.MakeParent();  // on top of all
    other.Open();
    return Fresh(other);
}

void TryEight(Trial& trial) {
    const DisplayServer display;
    std::array<std::unique_ptr<EditorHost>, 8> hosts;
    for (auto& host : hosts) host = std::make_unique<EditorHost>();
    EditorHost other;  // answers for all, as the last one made
    for (int operation = 0; operation < 400; ++operation) {
        EditorHost& host = *hosts[trial.Below(hosts.size())];
        switch (trial.Below(6)) {
            case 0: trial.Require(host.Open(), "a window does not open beside others"); break;
            case 1: host.Call(effEditClose); break;
            case 2: host.plugin.setParameter(92, 2.0F + static_cast<float>(trial.Below(4))); break;
            case 3:
                host.plugin.setParameter(static_cast<std::int32_t>(trial.Below(88)),
                                         static_cast<float>(trial.Below(101)) / 100);
                break;
            default: host.Idle();
        }
    }
    for (const auto& host : hosts) {
        host->Open();
        host->Idle();
        const std::uint32_t above = XCB_STACK_MODE_ABOVE;
        xcb_configure_window(host->connection, host->parent, XCB_CONFIG_WINDOW_STACK_MODE, &above);
        host->Sync();
        const std::vector<std::uint8_t> shown = Fresh(*host);
        trial.Require(shown == Expected(*host, other), "a window does not show its own instance's values");
    }
}

// A look at the pointer, a column or a label that leaves something behind does so in each second; a cache of
// a library's that fills does not.
void TryOpenWindow(Trial& trial) {
    const DisplayServer display;
    EditorHost host;
    host.plugin.setParameter(93, 1.0F);
    const Audio audio(host.plugin);
    trial.Require(host.Open(), "the window does not open");
    std::size_t before = 0, least = SIZE_MAX;
    for (int second = 0; second < 6; ++second) {
        for (int tick = 0; tick < 20; ++tick) {
            host.Idle();
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        const std::size_t now = mallinfo2().uordblks;
        if (second >= 3) least = std::min(least, now - std::min(now, before));
        before = now;
    }
    Trial::Figure("bytes a second", static_cast<double>(least));
    trial.Require(least == 0, "each second costs " + std::to_string(least) + " bytes");
}

const Registered eight({"EDI-4", "eight windows of eight instances show each its own", inRelease | inAddress,
                        25, 1, 60, TryEight});
const Registered open({"EDI-11", "an open window takes no more memory as time goes by", inRelease, 10, 1, 60,
                       TryOpenWindow});
const Registered calls({"EDI-2", "window calls in any order keep one window at most, of one size",
                        inRelease | inAddress, 1000, 1, 60, TryCalls});
const Registered parents({"EDI-3", "the host's window may go, move or change under the editor",
                          inRelease | inAddress, 1000, 1, 60, TryParents});
const Registered displays({"EDI-5",
                           "a display that goes, or is full or none, takes neither host nor audio along",
                           inRelease | inAddress, 100, 1, 60, TryDisplays});
const Registered threads({"EDI-8",
                          "window, automation and audio run together, and the window shows the last values",
                          inAll, 50, 1, 120, TryThreads});

}  // namespace
