#include <cstring>

#include "platform/midi_out_devices.h"
#include "platform/shell.h"
#include "tests/editor/editor_test.h"
#include "tests/support/temp_folder.h"

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::SizeIs;

class Controls : public EditorTest {
protected:
    void Open() {
        ASSERT_TRUE(host->Open());
        host->Settle();
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
    void NotePlain() { ground = host->Pixel(6, 318); }

    std::uint32_t ground = 0;  // a pixel of the bare window that a message's veil darkens
};

// Two devices that open and swallow all.
class TwoDevices : public MidiOutDevices {
public:
    TwoDevices() { SubstituteMidiOut(this); }
    ~TwoDevices() override { SubstituteMidiOut(nullptr); }

    std::uint32_t midiOutGetNumDevs() override { return 2; }
    std::uint32_t midiOutGetDevCapsW(std::uint32_t id, MidiOutCaps& caps) override {
        const char16_t* name = id == 0 ? u"Desk Piano" : u"Rack Synth";
        std::char_traits<char16_t>::copy(caps.name, name, 11);
        return 0;
    }
    std::uint32_t midiOutOpen(MidiOutHandle& handle, std::uint32_t id) override {
        opened.push_back(id);
        handle = id + 1;
        return 0;
    }
    std::uint32_t midiOutClose(MidiOutHandle) override { return 0; }
    std::uint32_t midiOutShortMsg(MidiOutHandle, std::uint32_t) override { return 0; }
    std::uint32_t midiOutReset(MidiOutHandle) override { return 0; }
    std::uint32_t midiOutLongMsg(MidiOutHandle, const MidiLongMessage&) override { return 0; }
    std::uint32_t midiOutGetErrorTextW(std::uint32_t, MidiOutErrorTextW&) override { return 0; }
    SystemVersion GetVersionExA() override { return {10, 0}; }

    std::vector<std::uint32_t> opened;
};

class FakeShell : public IShell {
public:
    FakeShell() { SubstituteSystemShell(this); }
    ~FakeShell() override { SubstituteSystemShell(nullptr); }
    bool OpenWebPage(const std::string& address) override { return Note("web " + address); }
    bool OpenMail(const std::string& address) override { return Note("mail " + address); }
    bool OpenHelpFile(const std::string& path) override { return Note("help " + path); }

    std::vector<std::string> opened;
    bool works = true;
    std::string absent = "?";  // what ends so cannot be opened

private:
    bool Note(const std::string& what) {
        opened.push_back(what);
        return works && !what.ends_with(absent);
    }
};

// A manual beside this program, in which the window is a part of the program.
class ManualBesideUs {
public:
    ManualBesideUs() { std::ofstream(file) << "<!DOCTYPE html>"; }
    ~ManualBesideUs() {
        std::error_code ignored;
        std::filesystem::remove(file, ignored);
    }
    ManualBesideUs(const ManualBesideUs&) = delete;
    ManualBesideUs& operator=(const ManualBesideUs&) = delete;

private:
    const std::filesystem::path file =
        std::filesystem::read_symlink("/proc/self/exe").parent_path() / "orva_vst.html";
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

TEST_F(Controls, AFreehandStrokeSetsEveryBarItPasses) {
    host->plugin.setParameter(92, 3.0F);
    Open();
    // The bars begin at 7, 48; bar b is at 3 * b + 1. From bar 10 to bar 20 at half height: y 101 of 203.
    Drag({7 + 31, 48 + 101}, {7 + 61, 48 + 101});
    for (int bar = 0; bar < 84; ++bar) {
        const auto told = host->ToldOf(bar + 3);
        if (bar < 10 || bar > 20)
            EXPECT_THAT(told, IsEmpty()) << bar;
        else
            EXPECT_THAT(told, ElementsAre(102.0F / 203.0F)) << bar;
    }
    const int x = 7 + 3 * 15 + 1;
    EXPECT_EQ(host->Pixel(x, 48 + 206 - 102 - 2), 0xFFFF00U);  // the bar's upper edge
    EXPECT_NE(host->Pixel(x, 48 + 206 - 102 - 3), 0xFFFF00U);
}

TEST_F(Controls, TheBarButtonsSetAllBarsInOrderEvenWhenReleasedOutside) {
    host->plugin.setParameter(92, 3.0F);
    Open();
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

TEST_F(Controls, TheHostsBarsAreDrawnAsTheyAre) {
    host->plugin.setParameter(92, 3.0F);
    Open();
    host->plugin.setParameter(3 + 40, 0.25F);  // int(0.25 * 203) = 50 pixels
    const int x = 7 + 3 * 40 + 1, top = 48 + 206 - 50 - 2;
    EXPECT_TRUE(host->Await([&] { return host->Pixel(x, top - 1) != 0xFFFF00U; }));
    EXPECT_EQ(host->Pixel(x, top), 0xFFFF00U);
    EXPECT_THAT(host->automated, IsEmpty());
}

TEST_F(Controls, SwitchesAndSlidersOfTheOptionsPage) {
    TwoDevices devices;
    host->plugin.setParameter(92, 4.0F);
    Open();
    Click({60, 62});  // Show chords
    EXPECT_THAT(host->ToldOf(93), ElementsAre(1.0F));
    Click({60, 62});
    EXPECT_THAT(host->ToldOf(93), ElementsAre(1.0F, 0.0F));
    Click({60, 123});  // Notes to host, on at first
    EXPECT_THAT(host->ToldOf(91), ElementsAre(0.0F));
    Click({60, 182});  // MIDI device
    EXPECT_THAT(host->ToldOf(89), ElementsAre(1.0F));
    EXPECT_THAT(devices.opened, ElementsAre(0U));
    Click({152, 242});  // Send Program Change
    EXPECT_THAT(host->ToldOf(95), ElementsAre(1.0F));
    Drag({89, 86}, {300, 86});  // Chords Delay to its end
    EXPECT_EQ(host->ToldOf(94).back(), 1.0F);
    Drag({43, 267}, {300, 267});  // the instrument likewise
    EXPECT_EQ(host->ToldOf(87).back(), 1.0F);
    host.reset();  // gives the device back before it goes
}

TEST_F(Controls, ChoosingAChannelTellsItInFifteenths) {
    host->plugin.setParameter(92, 4.0F);
    Open();
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
    TwoDevices devices;
    host->plugin.setParameter(92, 4.0F);
    Open();
    Click({120, 204});
    host->Settle();
    host->Click(120, 204 + 30);  // the second row of the menu, which hangs below
    EXPECT_TRUE(host->Await([&] { return !host->ToldOf(89).empty(); }));
    EXPECT_THAT(host->ToldOf(88), ElementsAre(0.01F));
    EXPECT_THAT(host->ToldOf(89), ElementsAre(1.0F));
    EXPECT_THAT(devices.opened, ElementsAre(1U));
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

TEST_F(Controls, WithNothingRecordedThereIsAMessageAndNoDialog) {
    TempFolder folder;
    folder.Program("zenity", "touch " + (folder / "started"));
    folder.BecomePath(true);
    Open();
    NotePlain();
    Click(recordButton);
    Click(saveButton);
    EXPECT_FALSE(host->plugin.recordingOn);
    EXPECT_TRUE(host->Await([&] { return MessageIsUp(); }));
    EXPECT_FALSE(folder.Has("started"));
    host->Key("Return");
    EXPECT_TRUE(host->Await([&] { return !MessageIsUp(); }));
}

TEST_F(Controls, ARecordingIsSavedUnderTheNameThatTheUserChose) {
    TempFolder folder;
    folder.Program("zenity",
                   "printf '%s\\n' \"$@\" > " + (folder / "told") + "; echo " + (folder / "take.mid"));
    folder.BecomePath(true);
    Open();
    host->plugin.resume();
    Click(recordButton);
    Play({440.0}, 1.0);
    Play({}, 0.5);
    Click(saveButton);  // ends the recording first
    EXPECT_FALSE(host->plugin.recordingOn);
    EXPECT_TRUE(host->Await([&] { return folder.Has("take.mid"); }));
    EXPECT_THAT(ReadAll(folder / "told"),
                testing::HasSubstr("--title=Select MIDI file\n--filename=midi_output.mid\n"));
    const std::string file = ReadAll(folder / "take.mid");
    EXPECT_EQ(file.substr(0, 4), "MThd");
    EXPECT_NE(file.find(std::string("\x45\x64", 2)), std::string::npos)
        << "no A 440 (note 69) at velocity 100";
}

TEST_F(Controls, AFileThatCannotBeWrittenIsTold) {
    TempFolder folder;
    folder.Program("zenity", "echo /nowhere/at/all/take.mid");
    folder.BecomePath(true);
    Open();
    NotePlain();
    host->plugin.resume();
    Click(recordButton);
    Play({440.0}, 1.0);
    Click(saveButton);
    EXPECT_TRUE(host->Await([&] { return MessageIsUp(); }));
    EXPECT_FALSE(host->plugin.nothingRecorded());  // the take is kept for another try
}

TEST_F(Controls, WithoutADialogProgramTheUserIsTold) {
    TempFolder folder;
    folder.Program("xdotool", "exec /usr/bin/xdotool \"$@\"");
    folder.BecomePath(false);
    Open();
    NotePlain();
    host->plugin.resume();
    Click(recordButton);
    Play({440.0}, 1.0);
    Click(saveButton);
    EXPECT_TRUE(host->Await([&] { return MessageIsUp(); }));
    setenv("PATH", "/usr/bin:/bin", 1);
}

TEST_F(Controls, ClosingTheWindowEndsItsDialog) {
    TempFolder folder;
    folder.Program("zenity", "echo $$ > " + (folder / "pid") + ".part; mv " + (folder / "pid") + ".part " +
                                 (folder / "pid") + "; exec sleep 1000");
    folder.BecomePath(true);
    host->plugin.setParameter(92, 5.0F);
    Open();
    Click(saveLogButton);
    ASSERT_TRUE(host->Await([&] { return folder.Has("pid"); }));
    const pid_t dialog = std::stoi(ReadAll(folder / "pid"));
    EXPECT_EQ(kill(dialog, 0), 0);
    host->Call(effEditClose);
    EXPECT_NE(kill(dialog, 0), 0);  // gone, and gathered
}

TEST_F(Controls, TheLogIsSaved) {
    TempFolder folder;
    folder.Program("zenity", "echo " + (folder / "log.txt"));
    folder.BecomePath(true);
    host->plugin.open();  // writes what is known of the host
    host->plugin.setParameter(92, 5.0F);
    Open();
    Click(saveLogButton);
    EXPECT_TRUE(host->Await([&] { return folder.Has("log.txt"); }));
    EXPECT_FALSE(ReadAll(folder / "log.txt").empty());
}

TEST_F(Controls, NameAndCodeAreStoredTogether) {
    TempFolder folder;
    setenv("XDG_CONFIG_HOME", folder.path.c_str(), 1);
    host->plugin.setParameter(92, 5.0F);
    Open();
    NotePlain();
    const auto stored = [&](const std::string& text) {
        for (const auto& each : std::filesystem::recursive_directory_iterator(folder.path)) {
            if (!each.is_regular_file()) continue;
            std::ifstream file(each.path());
            const std::string content(std::istreambuf_iterator<char>(file), {});
            if (content.find(text) != std::string::npos) return true;
        }
        return false;
    };
    Click({120, 243});
    host->Type("Jane Doe");
    host->Settle();
    Click(registerButton);  // no code yet
    EXPECT_TRUE(host->Await([&] { return MessageIsUp(); }));
    EXPECT_FALSE(stored("Jane Doe"));
    host->Key("Return");
    EXPECT_TRUE(host->Await([&] { return !MessageIsUp(); }));
    Click({120, 266});
    host->Type("1234-ABCD");
    host->Settle();
    Click(registerButton);  // takes what was typed, without a Return
    EXPECT_TRUE(host->Await([&] { return MessageIsUp(); }));
    EXPECT_TRUE(stored("Jane Doe"));
    EXPECT_TRUE(stored("1234-ABCD"));
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
    Open();
    EXPECT_EQ(host->Pixel(20, 60), day);
}

TEST_F(Controls, LinksOpenTheirPages) {
    FakeShell shell;
    host->plugin.setParameter(92, 5.0F);
    Open();
    Click({73 + 5, 38 + 137});
    Click({63 + 5, 38 + 190});
    Click({63 + 5, 38 + 170});  // between them
    EXPECT_THAT(shell.opened, ElementsAre("web https://www.orva-labs.example/english/"
                                          "orva-audio-to-midi-vst.html?r=orvavst&ver=1.30&os=win",
                                          "mail support@orva-labs.example"));
}

TEST_F(Controls, HelpComesByItsButtonAndByF1) {
    FakeShell shell;
    Open();
    NotePlain();
    Click(helpButton);
    EXPECT_THAT(shell.opened, ElementsAre(EndsWith("/orva_vst.chm")));
    EXPECT_EQ(host->Call(effEditKeyDown, 0, VKEY_F1), 1);
    host->Settle();
    EXPECT_THAT(shell.opened, SizeIs(2));
    host->Key("F1");  // the button's press has given the window the keys
    EXPECT_TRUE(host->Await([&] { return shell.opened.size() == 3; }));
    EXPECT_FALSE(MessageIsUp());
    shell.works = false;
    Click(helpButton);
    EXPECT_TRUE(host->Await([&] { return MessageIsUp(); }));
}

TEST_F(Controls, HelpIsTheManualWhereTheHelpFileIsNotThere) {
    const ManualBesideUs manual;
    FakeShell shell;
    shell.absent = ".chm";
    Open();
    NotePlain();
    Click(helpButton);
    EXPECT_THAT(shell.opened, ElementsAre(EndsWith("/orva_vst.chm"), EndsWith("/orva_vst.html")));
    EXPECT_FALSE(MessageIsUp());
}

TEST_F(Controls, MessagesComeOneAfterAnother) {
    Open();
    NotePlain();
    std::thread([&] {
        host->plugin.messages.Show("first", "Error");
        host->plugin.messages.Show("second", "Error");
    }).join();
    EXPECT_TRUE(host->Await([&] { return MessageIsUp(); }));
    host->Settle();
    const auto first = host->Pixels(0, 0, 267, 320);
    host->Key("Escape");  // keys reach the message only once the window has the focus
    Click({320, 185});
    host->Settle();
    EXPECT_TRUE(MessageIsUp());
    EXPECT_NE(host->Pixels(0, 0, 267, 320), first);
}
