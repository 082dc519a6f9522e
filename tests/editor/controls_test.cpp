#include <cmath>
#include <map>
#include <thread>
#include <tuple>

#include "desktop/shell.h"
#include "desktop/user_store.h"
#include "tests/editor/editor_test.h"
#include "tests/support/devices.h"
#include "tests/support/temp_folder.h"

namespace {

using Values = std::map<std::int32_t, float>;  // by parameter
using Names = std::vector<std::string>;

constexpr Place barsOff = {30, 279}, barsHalf = {130, 279};
constexpr Place nameLabel = {200, 71}, versionLabel = {200, 91};
constexpr Place registerButton = {45, 291}, helpButton = {363, 23};

class Controls : public EditorTest {
protected:
    Controls() { SubstituteMidiOut(&devices); }
    ~Controls() override {
        host.reset();  // gives its device back
        SubstituteMidiOut(nullptr);
    }
    // The last value of each parameter that the host was sent since the last look.
    Values Reported() {
        Values values;
        for (const Automation& each : host->automated) values[each.index] = each.value;
        host->automated.clear();
        return values;
    }
    FakeDevices devices;
};

Values Bars(int first, int last, float value) {
    Values values;
    for (int bar = first; bar <= last; ++bar) values[bar + 3] = value;
    return values;
}

TEST_F(Controls, ReportWhatTheMouseSetsAndNothingElse) {
    const struct {
        float page;
        Place from, to;
        Values reported;
    } rows[] = {
        {2, {80, 90}, {80, 60}, {{1, 1.0F}}},  // Sensitivity, beyond its upper end
        {2, {80, 80}, {80, 305}, {{1, 0.0F}}},
        {3, barsHalf, barsHalf, Bars(0, 83, 0.5F)},
        {3, barsOff, {30, 310}, Bars(0, 83, 0.0F)},  // even when released outside
        // The bars begin at 7, 48; bar b is at 3 * b + 1. From bar 10 to bar 20 at half height: y 101 of 203.
        {3, {7 + 31, 48 + 101}, {7 + 61, 48 + 101}, Bars(10, 20, 102.0F / 203.0F)},
        {4, {60, 62}, {60, 62}, {{93, 1.0F}}},  // Show chords
        {4, {60, 62}, {60, 62}, {{93, 0.0F}}},
        {4, {60, 123}, {60, 123}, {{91, 0.0F}}},    // Notes to host, on at first
        {4, {60, 182}, {60, 182}, {{89, 1.0F}}},    // MIDI device
        {4, {152, 242}, {152, 242}, {{95, 1.0F}}},  // Send Program Change
        {4, {89, 86}, {300, 86}, {{94, 1.0F}}},     // Chords Delay
        {4, {43, 267}, {300, 267}, {{87, 1.0F}}},   // the instrument
    };
    Open();
    for (const auto& [page, from, to, reported] : rows) {
        host->plugin.setParameter(92, page);
        host->Settle();
        Drag(from, to);
        EXPECT_EQ(Reported(), reported) << "on page " << page << " at " << from.x << ", " << from.y;
        for (const auto& [index, value] : reported)
            EXPECT_EQ(host->plugin.getParameter(index), value) << index;
    }
    EXPECT_EQ(devices.opened, 1);
}

TEST_F(Controls, ShowWhatAQuickHandOrTheHostHasSet) {
    Open();
    host->Fling(80, 90, 80,
                305);  // Sensitivity, from its beginning to below its lower end, without idle time
    host->Settle();
    EXPECT_EQ(host->plugin.getParameter(1), 0.0F);
    host->plugin.setParameter(92, 3);
    Drag({7 + 46, 48 + 101}, {7 + 46, 48 + 101});
    host->plugin.setParameter(3 + 40, 0.25F);
    for (const auto& [bar, pixels] : {std::pair<int, int>{15, 102}, {40, 50}}) {  // int(0.25 * 203)
        const int x = 7 + 3 * bar + 1, top = 48 + 206 - pixels - 2;
        EXPECT_TRUE(host->Await([&] { return host->Pixel(x, top) == 0xFFFF00U; })) << bar;
        EXPECT_TRUE(host->Await([&] { return host->Pixel(x, top - 1) != 0xFFFF00U; })) << bar;
    }
    EXPECT_EQ(host->ToldOf(3 + 40), std::vector<float>());
}

// Half the options page is 133 whole pixels, where the channel menu ends and the page's own colour begins.
TEST_F(Controls, AnInstrumentsNameIsShownAsTheHostOrTheMouseSetsIt) {
    Open(4);
    EXPECT_EQ(host->Pixel(133, 38 + 204), host->Pixel(136, 38 + 204));
    const auto label = [this] { return host->Pixels(34, 38 + 242, 220, 17); };
    Drag({43, 267}, {300, 267});
    const Picture shown = label();
    for (const float value : {0.0F, 1.0F}) {  // from the host: the label is made anew
        host->plugin.setParameter(87, value);
        host->Settle();
        EXPECT_EQ(label() == shown, value == 1.0F);
    }
}

TEST_F(Controls, MenusChooseAChannelAndADeviceThatIsSwitchedOn) {
    Open(4);
    Click({80, 242});
    for (const char* key : {"Down", "Down", "Return"}) host->Key(key);
    EXPECT_TRUE(host->Await([&] { return !host->automated.empty(); }));
    const Values channel = Reported();
    ASSERT_EQ(channel.size(), 1U);
    EXPECT_EQ(channel.begin()->first, 90);
    EXPECT_GE(channel.begin()->second * 15, 1);
    EXPECT_FLOAT_EQ(channel.begin()->second * 15, std::round(channel.begin()->second * 15));
    Click({120, 204});
    host->Click(120, 204 + 30);  // the second row of the menu, which hangs below
    EXPECT_TRUE(host->Await([&] { return host->automated.size() == 2; }));
    EXPECT_EQ(Reported(), (Values{{88, 0.01F}, {89, 1.0F}}));
    EXPECT_EQ(devices.opened, 1);
}

TEST_F(Controls, ATakeIsSavedUnderTheChosenNameAndKeptUntilItIs) {
    TempFolder folder;
    folder.Program("xdotool", "exec /usr/bin/xdotool \"$@\"");
    folder.BecomePath(false);
    Open();
    const auto lit = [this] {
        Click(recordButton);
        host->MoveTo(300, 310);
        host->Settle();
        EXPECT_TRUE(host->plugin.recordingOn);
        return host->Pixels(160, 270, 80, 30);
    };
    EXPECT_EQ(lit(), lit());  // the button stays on while it records
    Click(stopButton);
    EXPECT_FALSE(host->plugin.recordingOn);
    const auto expectMessage = [this](const char* reason) {
        Click(saveButton);
        EXPECT_FALSE(host->plugin.recordingOn) << reason;  // ended first
        EXPECT_TRUE(host->Await([&] { return MessageIsUp(); })) << reason;
        EndMessage();
    };
    folder.Program("zenity", ": > " + (folder / "started"));
    Click(recordButton);
    expectMessage("nothing recorded");
    EXPECT_FALSE(folder.Has("started"));

    host->plugin.resume();
    Click(recordButton);
    Play({69}, 1.0);
    Play({}, 0.5);
    std::filesystem::remove(folder / "zenity");
    expectMessage("no program for the dialog");
    folder.Program("zenity", "echo /nowhere/at/all/take.mid");
    expectMessage("a file that cannot be written");
    folder.Program("zenity", "echo \"$@\" > " + (folder / "options") + "; echo " + (folder / "take.mid"));
    Click(saveButton);
    EXPECT_TRUE(host->Await([&] { return folder.Has("take.mid"); }));
    EXPECT_NE(ReadAll(folder / "options").find("--title=Select MIDI file --filename=midi_output.mid"),
              std::string::npos);
    const std::string file = ReadAll(folder / "take.mid");
    EXPECT_EQ(file.substr(0, 4), "MThd");
    EXPECT_NE(file.find("\x45\x64"), std::string::npos) << "no A 440 (note 69) at velocity 100";
    setenv("PATH", "/usr/bin:/bin", 1);
}

TEST_F(Controls, TheAboutPageSavesTheLogAndStoresNameAndCodeTogether) {
    TempFolder folder;
    folder.Program("zenity", "echo " + (folder / "log.txt"));
    folder.BecomePath(true);
    setenv("XDG_CONFIG_HOME", folder.path.c_str(), 1);
    host->plugin.open();  // writes what is known of the host
    Open(5);
    Click(saveLogButton);
    EXPECT_TRUE(host->Await([&] { return folder.Has("log.txt"); }));
    EXPECT_FALSE(ReadAll(folder / "log.txt").empty());

    const std::tuple<Place, const char*, std::string, std::string> fields[] = {
        {{120, 243}, "Jane Doe", "", ""},  // no code yet
        {{120, 266}, "1234-ABCD", "Jane Doe", "1234-ABCD"}};
    for (const auto& [place, text, name, code] : fields) {
        Click(place);
        host->Type(text);
        host->Settle();
        Click(registerButton);  // takes what was typed, without a Return
        EXPECT_TRUE(host->Await([&] { return MessageIsUp(); }));
        EXPECT_EQ(readRegistryString("Name"), name);
        EXPECT_EQ(readRegistryString("Code"), code);
        EndMessage();
    }
    unsetenv("XDG_CONFIG_HOME");
}

TEST_F(Controls, TheHiddenGestureLastsUntilTheWindowCloses) {
    Open(3);
    Click(barsOff);
    const std::uint32_t day = host->Pixel(20, 60);
    for (const Place place : {mainButton, nameLabel, versionLabel, versionLabel, equalizerButton})
        Click(place);  // the first on the version counts with the name, and is no multiple of three
    EXPECT_NE(host->Pixel(20, 60), day);
    host->Call(effEditClose);
    Open(3);
    EXPECT_EQ(host->Pixel(20, 60), day);
}

class FakeShell : public IShell {
public:
    FakeShell() { SubstituteSystemShell(this); }
    ~FakeShell() override { SubstituteSystemShell(nullptr); }
    bool OpenWebPage(const std::string& address) override { return Note("web " + address); }
    bool OpenMail(const std::string& address) override { return Note("mail " + address); }
    bool OpenHelpFile(const std::string& path) override {
        return Note("help" + path.substr(path.rfind('/')));
    }

    Names opened;
    std::string absent = "?";  // what ends so cannot be opened

private:
    bool Note(const std::string& what) {
        opened.push_back(what);
        return !what.ends_with(absent);
    }
};

TEST_F(Controls, LinksAndHelpOpenByMouseAndKey) {
    FakeShell shell;
    Open(5);
    for (const Place place : {Place{78, 175}, Place{68, 228}, Place{68, 208}})
        Click(place);  // the last between them
    Names expected = {
        "web https://www.orva-labs.example/english/"
        "orva-audio-to-midi-vst.html?r=orvavst&ver=1.30&os=win",
        "mail support@orva-labs.example"};
    EXPECT_EQ(shell.opened, expected);
    Click(helpButton);
    EXPECT_EQ(host->Call(effEditKeyDown, 0, VKEY_F1), 1);
    host->Settle();
    host->Key("F1");  // the button's press has given the window the keys
    expected.insert(expected.end(), 3, "help/orva_vst.chm");
    EXPECT_TRUE(host->Await([&] { return shell.opened == expected; }));

    // Without the help file, the manual beside the module, which is this program here.
    shell.absent = ".chm";
    const auto manual = std::filesystem::read_symlink("/proc/self/exe").parent_path() / "orva_vst.html";
    WriteAll(manual, "<!DOCTYPE html>");
    Click(helpButton);
    std::filesystem::remove(manual);
    EXPECT_EQ(shell.opened.back(), "help/orva_vst.html");
    EXPECT_FALSE(MessageIsUp());
    shell.absent = "";  // all
    Click(helpButton);
    EXPECT_TRUE(host->Await([&] { return MessageIsUp(); }));
}

TEST_F(Controls, MessagesComeOneAfterAnother) {
    Open();
    std::thread([&] {
        for (const char* text : {"first", "second"}) host->plugin.messages.Show(text, "Error");
    }).join();
    EXPECT_TRUE(host->Await([&] { return MessageIsUp(); }));
    host->Settle();
    const Picture first = Page();
    Click({320, 185});
    EXPECT_TRUE(MessageIsUp());
    EXPECT_NE(Page(), first);
    EndMessage();
}

// The dialog of the log's button, as a program of ours.
class SaveDialog : public EditorTest {
protected:
    // Its process, once its command line stands in the file "options".
    std::string Start(xcb_window_t window) {
        folder.Program("zenity", "cd " + folder.path.string() +
                                     "; echo $$ > new; mv new pid; printf '%s\\n' \"$@\" > new; mv new "
                                     "options; exec sleep 1000");
        folder.BecomePath(true);
        host->plugin.setParameter(92, 5.0F);
        EXPECT_TRUE(host->Open(window));
        host->Settle();
        host->Click(saveLogButton.x, saveLogButton.y);
        EXPECT_TRUE(host->Await([&] { return folder.Has("options"); }));
        return ReadAll(folder / "pid");
    }
    ~SaveDialog() override { setenv("PATH", "/usr/local/bin:/usr/bin:/bin", 1); }
    TempFolder folder;
};

// Its owner is the window that the manager knows, however deep the editor's parent lies in it.
TEST_F(SaveDialog, BelongsToTheHostsWindowAndEndsWithOurs) {
    const xcb_window_t inner = xcb_generate_id(host->connection);
    xcb_create_window(host->connection, XCB_COPY_FROM_PARENT, inner, host->parent, 0, 0, 400, 320, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_map_window(host->connection, inner);
    host->Sync();
    const pid_t dialog = std::stoi(Start(inner));
    EXPECT_NE(ReadAll(folder / "options").find("\n--attach=" + std::to_string(host->parent) + "\n"),
              std::string::npos);
    EXPECT_EQ(kill(dialog, 0), 0);
    host->Call(effEditClose);
    EXPECT_NE(kill(dialog, 0), 0);  // ended, and reaped
}

// As zenity's own file dialog: a window with the program's number, which a window manager lists.
TEST_F(SaveDialog, IsMadeToWhereItsProgramIgnoresItsOwner) {
    const auto process = static_cast<std::uint32_t>(std::stoul(Start(host->parent)));
    const xcb_window_t dialog = xcb_generate_id(host->connection);
    xcb_create_window(host->connection, XCB_COPY_FROM_PARENT, dialog, host->screen->root, 0, 0, 9, 9, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    const auto set = [&](xcb_window_t window, const char* property, xcb_atom_t type, std::uint32_t word) {
        xcb_change_property(host->connection, XCB_PROP_MODE_REPLACE, window, host->Atom(property), type, 32,
                            1, &word);
    };
    set(dialog, "_NET_WM_PID", XCB_ATOM_CARDINAL, process);
    set(host->screen->root, "_NET_CLIENT_LIST", XCB_ATOM_WINDOW, dialog);
    host->Sync();
    const std::string owner(reinterpret_cast<const char*>(&host->parent), sizeof host->parent);
    EXPECT_TRUE(host->Await([&] { return host->Property(dialog, "WM_TRANSIENT_FOR") == owner; }));
}

}  // namespace
