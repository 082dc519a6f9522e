#include "desktop/user_store.h"
#include "tests/editor/editor_test.h"
#include "tests/support/temp_folder.h"

namespace {

using Values = std::map<std::int32_t, float>;  // by parameter

constexpr Place barsOff = {30, 279}, barsHalf = {130, 279};
constexpr Place registerButton = {45, 291};

class Controls : public EditorTest {
protected:
    // The last value of each parameter that the host was sent since the last look.
    Values Reported() {
        Values values;
        for (const Automation& each : host->automated) values[each.index] = each.value;
        host->automated.clear();
        return values;
    }
};

Values Bars(int first, int last, int pixels, int slope = 0) {  // of 203
    Values values;
    for (int bar = first; bar <= last; ++bar, pixels += slope)
        values[bar + 3] = static_cast<float>(pixels) / 203.0F;
    return values;
}

TEST_F(Controls, ReportWhatTheMouseSetsAndNothingElse) {
    Values half;
    for (int bar = 0; bar < 84; ++bar) half[bar + 3] = 0.5F;
    const struct {
        float page;
        Place from, to;
        Values reported;
    } rows[] = {
        {2, {80, 90}, {80, 60}, {{1, 1.0F}}},  // Sensitivity, beyond its upper end
        {3, barsHalf, barsHalf, half},
        {3, barsOff, {30, 310}, Bars(0, 83, 0)},  // released outside
        // The bars begin at 7, 48, bar b at 3 * b + 1: no gap from bar 10 to bar 20, and so past either end.
        {3, {7 + 31, 48 + 101}, {7 + 61, 48 + 81}, Bars(10, 20, 102, 2)},
        {3, {7 + 61, 48 + 101}, {7 + 31, 48 + 81}, Bars(10, 20, 122, -2)},
        {3, {7 + 241, 48 + 101}, {300, 48 + 101}, Bars(80, 83, 102)},
        {3, {7 + 241, 48 + 101}, {7 + 241, 310}, Bars(80, 80, 0)},
        {4, {60, 62}, {60, 62}, {{93, 1.0F}}},      // Show chords
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

TEST_F(Controls, ShowWhatTheHostSets) {
    Open(3);
    host->plugin.setParameter(3 + 40, 0.25F);
    const int x = 7 + 3 * 40 + 1, top = 48 + 206 - 50 - 2;  // 50 = int(0.25 * 203)
    EXPECT_TRUE(host->Await([&] { return host->Pixel(x, top) == 0xFFFF00U; }));
    EXPECT_TRUE(host->Await([&] { return host->Pixel(x, top - 1) != 0xFFFF00U; }));
    EXPECT_TRUE(host->automated.empty());
}

TEST_F(Controls, MenusChooseAChannelAndADeviceThatIsSwitchedOn) {
    Open(4);
    Click({80, 242});
    for (const char* key : {"Down", "Down", "Return"}) host->Key(key);
    EXPECT_TRUE(host->Await([&] { return !host->automated.empty(); }));
    EXPECT_EQ(Reported().count(90), 1U);
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
    const auto expectMessage = [this](const char* reason) {
        Click(saveButton);
        EXPECT_TRUE(host->Await([&] { return MessageIsUp(); })) << reason;
        EndMessage();
    };
    Click(recordButton);
    expectMessage("nothing recorded");

    host->plugin.resume();
    Click(recordButton);
    EXPECT_TRUE(host->plugin.recordingOn);
    Play({69}, 1.0);
    Play({}, 0.5);
    Click(stopButton);
    EXPECT_FALSE(host->plugin.recordingOn);
    expectMessage("no program for the dialog");
    folder.Program("zenity", "echo /nowhere/at/all/take.mid");
    expectMessage("a file that cannot be written");
    folder.Program("zenity", "echo " + (folder / "take.mid"));
    Click(saveButton);
    EXPECT_TRUE(host->Await([&] { return folder.Has("take.mid"); }));
    EXPECT_TRUE(ReadAll(folder / "take.mid").find("\x45\x64") != std::string::npos)
        << "no A 440, velocity 100";
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

    const std::pair<Place, const char*> fields[] = {{{120, 243}, "Jane Doe"}, {{120, 266}, "1234-ABCD"}};
    for (const auto& [place, text] : fields) {
        EXPECT_EQ(readRegistryString("Name"), "");  // not without a code
        Click(place);
        host->Type(text);
        host->Settle();
        Click(registerButton);  // takes what was typed, without a Return
        EXPECT_TRUE(host->Await([&] { return MessageIsUp(); }));
        EndMessage();
    }
    EXPECT_EQ(readRegistryString("Name") + readRegistryString("Code"), "Jane Doe1234-ABCD");
    unsetenv("XDG_CONFIG_HOME");
}

}  // namespace
