#include "platform/shell.h"
#include "platform/user_store.h"
#include "tests/delivery/midi_device_layer.h"
#include "tests/editor/editor_test.h"
#include "tests/support/temp_folder.h"

namespace {

using testing::_;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

class Controls : public EditorTest {
protected:
    // At one of the pages, as the parameter numbers them.
    void Open(float page = 2) {
        host->plugin.setParameter(92, page);
        ASSERT_TRUE(host->Open());
        host->Settle();
        ground = host->Pixel(6, 318);
    }
    void Click(Place place) {
        host->Click(place.x, place.y);
        host->Settle();
    }
    void Drag(Place from, Place to) {
        host->MoveTo(from.x, from.y);
        host->Press();
        host->Settle();
        host->MoveTo(to.x, to.y);
        host->Settle();
        host->Release();
        host->Settle();
    }
    bool MessageIsUp() { return host->Pixel(6, 318) != ground; }

    std::uint32_t ground = 0;  // a pixel of the bare window that a message's veil darkens
};

class Devices : public FakeLayer {
public:
    Devices() { SubstituteMidiOut(this); }
    ~Devices() override { SubstituteMidiOut(nullptr); }
};

class FakeShell : public IShell {
public:
    FakeShell() { SubstituteSystemShell(this); }
    ~FakeShell() override { SubstituteSystemShell(nullptr); }
    bool OpenWebPage(const std::string& address) override { return Note("web " + address); }
    bool OpenMail(const std::string& address) override { return Note("mail " + address); }
    bool OpenHelpFile(const std::string& path) override { return Note("help " + path); }

    std::vector<std::string> opened;
    std::string absent = "?";  // what ends so cannot be opened

private:
    bool Note(const std::string& what) {
        opened.push_back(what);
        return !what.ends_with(absent);
    }
};

}  // namespace

TEST_F(Controls, ASliderTellsTheHostWhatTheMouseSets) {
    Open();
    Drag({80, 90}, {80, 60});  // Sensitivity, beyond its upper end
    ASSERT_FALSE(host->ToldOf(1).empty());
    EXPECT_EQ(host->ToldOf(1).back(), 1.0F);
    EXPECT_EQ(host->plugin.getParameter(1), 1.0F);
    Drag({80, 80}, {80, 305});
    EXPECT_EQ(host->ToldOf(1).back(), 0.0F);
    EXPECT_THAT(host->ToldOf(0), IsEmpty());
    EXPECT_THAT(host->ToldOf(2), IsEmpty());
}

// A hand moves on while the host gives the window no time.
TEST_F(Controls, ASliderStandsWhereAQuickHandLetItGo) {
    Open();
    host->Fling(80, 90, 80, 305);  // from its beginning to below its lower end
    host->Settle();
    EXPECT_EQ(host->plugin.getParameter(1), 0.0F);
}

TEST_F(Controls, BarsAreSetByAFreehandStrokeAndDrawnAsTheyAre) {
    Open(3);
    // The bars begin at 7, 48; bar b is at 3 * b + 1. From bar 10 to bar 20 at half height: y 101 of 203.
    Drag({7 + 31, 48 + 101}, {7 + 61, 48 + 101});
    for (int bar = 0; bar < 84; ++bar) {
        const auto told = host->ToldOf(bar + 3);
        if (bar < 10 || bar > 20)
            EXPECT_THAT(told, IsEmpty()) << bar;
        else
            EXPECT_THAT(told, ElementsAre(102.0F / 203.0F)) << bar;
    }
    const auto expectDrawn = [this](int bar, int pixels) {
        const int x = 7 + 3 * bar + 1, top = 48 + 206 - pixels - 2;
        EXPECT_TRUE(host->Await([&] { return host->Pixel(x, top - 1) != 0xFFFF00U; }));
        EXPECT_EQ(host->Pixel(x, top), 0xFFFF00U);
    };
    expectDrawn(15, 102);
    host->plugin.setParameter(3 + 40, 0.25F);  // by the host
    expectDrawn(40, 50);                       // int(0.25 * 203)
    EXPECT_THAT(host->ToldOf(3 + 40), IsEmpty());
}

TEST_F(Controls, TheBarButtonsSetAllBarsInOrderEvenWhenReleasedOutside) {
    Open(3);
    Click(barsHalf);
    ASSERT_THAT(host->automated, SizeIs(84));
    for (std::size_t i = 0; i < 84; ++i) {
        EXPECT_EQ(host->automated[i].index, static_cast<std::int32_t>(i) + 3);
        EXPECT_EQ(host->automated[i].value, 0.5F);
    }
    host->automated.clear();
    Drag(barsOff, {30, 310});
    ASSERT_THAT(host->automated, SizeIs(84));
    EXPECT_EQ(host->automated[83].value, 0.0F);
    Click(barsFull);
    EXPECT_THAT(host->ToldOf(3), ElementsAre(0.0F, 1.0F));
}

TEST_F(Controls, SwitchesAndSlidersOfTheOptionsPage) {
    Devices devices;
    Open(4);
    Click({60, 62});  // Show chords
    EXPECT_THAT(host->ToldOf(93), ElementsAre(1.0F));
    Click({60, 62});
    EXPECT_THAT(host->ToldOf(93), ElementsAre(1.0F, 0.0F));
    Click({60, 123});  // Notes to host, on at first
    EXPECT_THAT(host->ToldOf(91), ElementsAre(0.0F));
    Click({60, 182});  // MIDI device
    EXPECT_THAT(host->ToldOf(89), ElementsAre(1.0F));
    EXPECT_THAT(devices.open, ElementsAre(Pair(_, 0U)));
    Click({152, 242});  // Send Program Change
    EXPECT_THAT(host->ToldOf(95), ElementsAre(1.0F));
    Drag({89, 86}, {300, 86});  // Chords Delay to its end
    EXPECT_EQ(host->ToldOf(94).back(), 1.0F);
    Drag({43, 267}, {300, 267});  // the instrument likewise
    EXPECT_EQ(host->ToldOf(87).back(), 1.0F);
    host.reset();  // gives the device back before it goes
}

TEST_F(Controls, ChoosingAChannelTellsItInFifteenths) {
    Open(4);
    Click({80, 242});
    host->Key("Down");
    host->Key("Down");
    host->Key("Return");
    EXPECT_TRUE(host->Await([&] { return !host->ToldOf(90).empty(); }));
    ASSERT_THAT(host->ToldOf(90), SizeIs(1));
    const float channel = host->ToldOf(90)[0] * 15;
    EXPECT_FLOAT_EQ(channel, std::round(channel));
    EXPECT_GE(channel, 1);
}

TEST_F(Controls, ChoosingADeviceSwitchesTheOutputOn) {
    Devices devices;
    Open(4);
    Click({120, 204});
    host->Settle();
    host->Click(120, 204 + 30);  // the second row of the menu, which hangs below
    EXPECT_TRUE(host->Await([&] { return !host->ToldOf(89).empty(); }));
    EXPECT_THAT(host->ToldOf(88), ElementsAre(0.01F));
    EXPECT_THAT(host->ToldOf(89), ElementsAre(1.0F));
    EXPECT_THAT(devices.open, ElementsAre(Pair(_, 1U)));
    host.reset();
}

TEST_F(Controls, TheRecordButtonStaysLitWhileItRecords) {
    Open();
    Click(recordButton);
    EXPECT_TRUE(host->plugin.recordingOn);
    host->MoveTo(300, 310);
    host->Settle();
    const auto lit = host->Pixels(160, 270, 80, 30);
    Click(recordButton);
    host->MoveTo(300, 310);
    host->Settle();
    EXPECT_TRUE(host->plugin.recordingOn);
    EXPECT_EQ(host->Pixels(160, 270, 80, 30), lit);
    Click(stopButton);
    EXPECT_FALSE(host->plugin.recordingOn);
    Click(stopButton);
    EXPECT_FALSE(host->plugin.recordingOn);
}

TEST_F(Controls, ATakeIsSavedUnderTheChosenNameAndKeptUntilItIs) {
    TempFolder folder;
    folder.Program("xdotool", "exec /usr/bin/xdotool \"$@\"");
    folder.BecomePath(false);
    Open();
    const auto expectMessage = [this](const char* reason) {
        Click(saveButton);
        EXPECT_FALSE(host->plugin.recordingOn) << reason;  // ended first
        EXPECT_TRUE(host->Await([&] { return MessageIsUp(); })) << reason;
        host->Key("Return");
        EXPECT_TRUE(host->Await([&] { return !MessageIsUp(); })) << reason;
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

    folder.Program("zenity",
                   "printf '%s\\n' \"$@\" > " + (folder / "told") + "; echo " + (folder / "take.mid"));
    Click(saveButton);
    EXPECT_TRUE(host->Await([&] { return folder.Has("take.mid"); }));
    EXPECT_THAT(ReadAll(folder / "told"),
                HasSubstr("--title=Select MIDI file\n--filename=midi_output.mid\n"));
    const std::string file = ReadAll(folder / "take.mid");
    EXPECT_EQ(file.substr(0, 4), "MThd");
    EXPECT_THAT(file, HasSubstr("\x45\x64")) << "no A 440 (note 69) at velocity 100";
    setenv("PATH", "/usr/bin:/bin", 1);
}

TEST_F(Controls, TheLogIsSavedAndClosingTheWindowEndsItsDialog) {
    TempFolder folder;
    folder.Program("zenity", "echo " + (folder / "log.txt"));
    folder.BecomePath(true);
    host->plugin.open();  // writes what is known of the host
    Open(5);
    Click(saveLogButton);
    EXPECT_TRUE(host->Await([&] { return folder.Has("log.txt"); }));
    EXPECT_FALSE(ReadAll(folder / "log.txt").empty());

    folder.Program("zenity", "cd " + folder.path.string() + "; echo $$ > new; mv new pid; exec sleep 1000");
    Click(saveLogButton);
    ASSERT_TRUE(host->Await([&] { return folder.Has("pid"); }));
    const pid_t dialog = std::stoi(ReadAll(folder / "pid"));
    EXPECT_EQ(kill(dialog, 0), 0);
    host->Call(effEditClose);
    EXPECT_NE(kill(dialog, 0), 0);  // gone, and gathered
}

TEST_F(Controls, NameAndCodeAreStoredTogether) {
    TempFolder folder;
    setenv("XDG_CONFIG_HOME", folder.path.c_str(), 1);
    Open(5);
    Click({120, 243});
    host->Type("Jane Doe");
    host->Settle();
    Click(registerButton);  // no code yet
    EXPECT_TRUE(host->Await([&] { return MessageIsUp(); }));
    EXPECT_EQ(readRegistryString("Name"), "");
    host->Key("Return");
    EXPECT_TRUE(host->Await([&] { return !MessageIsUp(); }));
    Click({120, 266});
    host->Type("1234-ABCD");
    host->Settle();
    Click(registerButton);  // takes what was typed, without a Return
    EXPECT_TRUE(host->Await([&] { return MessageIsUp(); }));
    EXPECT_EQ(readRegistryString("Name"), "Jane Doe");
    EXPECT_EQ(readRegistryString("Code"), "1234-ABCD");
    unsetenv("XDG_CONFIG_HOME");
}

TEST_F(Controls, TheHiddenGestureLastsUntilTheWindowCloses) {
    Open();
    Click(nameLabel);
    Click(versionLabel);  // one click is no multiple of three: back to none
    const std::uint32_t day = [&] {
        Click(equalizerButton);
        Click(barsOff);
        return host->Pixel(20, 60);
    }();
    Click(mainButton);
    Click(versionLabel);  // none is one
    Click(equalizerButton);
    const std::uint32_t night = host->Pixel(20, 60);
    EXPECT_NE(night, day);
    EXPECT_THAT(host->ToldOf(778), IsEmpty());
    host->Call(effEditClose);
    Open(3);
    EXPECT_EQ(host->Pixel(20, 60), day);
}

TEST_F(Controls, LinksOpenTheirPages) {
    FakeShell shell;
    Open(5);
    Click({73 + 5, 38 + 137});
    Click({63 + 5, 38 + 190});
    Click({63 + 5, 38 + 170});  // between them
    EXPECT_THAT(shell.opened, ElementsAre("web https://www.orva-labs.example/english/"
                                          "orva-audio-to-midi-vst.html?r=orvavst&ver=1.30&os=win",
                                          "mail support@orva-labs.example"));
}

TEST_F(Controls, HelpComesByItsButtonAndByF1AndFromTheManualOtherwise) {
    FakeShell shell;
    Open();
    Click(helpButton);
    EXPECT_THAT(shell.opened, ElementsAre(EndsWith("/orva_vst.chm")));
    EXPECT_EQ(host->Call(effEditKeyDown, 0, VKEY_F1), 1);
    host->Settle();
    EXPECT_THAT(shell.opened, SizeIs(2));
    host->Key("F1");  // the button's press has given the window the keys
    EXPECT_TRUE(host->Await([&] { return shell.opened.size() == 3; }));

    // Without the help file the manual beside this program, in which the window is a part of the program.
    shell.absent = ".chm";
    const auto manual = std::filesystem::read_symlink("/proc/self/exe").parent_path() / "orva_vst.html";
    WriteAll(manual, "<!DOCTYPE html>");
    Click(helpButton);
    std::filesystem::remove(manual);
    EXPECT_THAT(shell.opened.back(), EndsWith("/orva_vst.html"));
    EXPECT_FALSE(MessageIsUp());
    shell.absent = "";  // all
    Click(helpButton);
    EXPECT_TRUE(host->Await([&] { return MessageIsUp(); }));
}

TEST_F(Controls, MessagesComeOneAfterAnother) {
    Open();
    std::thread([&] {
        host->plugin.messages.Show("first", "Error");
        host->plugin.messages.Show("second", "Error");
    }).join();
    EXPECT_TRUE(host->Await([&] { return MessageIsUp(); }));
    host->Settle();
    const auto first = host->Pixels(0, 0, 267, 320);
    Click({320, 185});
    host->Settle();
    EXPECT_TRUE(MessageIsUp());
    EXPECT_NE(host->Pixels(0, 0, 267, 320), first);
}
