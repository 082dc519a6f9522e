#include "platform/file_dialog.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <thread>

#include "tests/support/temp_folder.h"

namespace {

using State = FileDialog::State;

const FileDialogRequest midiFile = {"Select MIDI file", "MIDI Files (*.mid)", "mid", "midi_output.mid"};

class FileDialogTest : public testing::Test {
protected:
    FileDialogTest() { folder.BecomePath(false); }
    ~FileDialogTest() override { setenv("PATH", "/usr/local/bin:/usr/bin:/bin", 1); }

    State Answer() {
        for (int round = 0; round < 3000 && dialog.Poll() == State::running; ++round)
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        return dialog.Poll();
    }

    TempFolder folder;
    FileDialog dialog;
};

}  // namespace

TEST_F(FileDialogTest, GivesEachArgumentAsItIs) {
    folder.Program("zenity", "printf '%s\\n' \"$#\" \"$@\" > " + (folder / "told") + "; echo /music/a.mid");
    ASSERT_TRUE(dialog.Start({"Take; $(touch x) \"1\"", "MIDI Files (*.mid)", "mid", "midi_output.mid"}));
    EXPECT_EQ(Answer(), State::chosen);
    EXPECT_EQ(dialog.Path(), "/music/a.mid");
    EXPECT_EQ(ReadAll(folder / "told"),
              "6\n--file-selection\n--save\n--confirm-overwrite\n--title=Take; $(touch x) \"1\"\n"
              "--filename=midi_output.mid\n--file-filter=MIDI Files (*.mid) | *.mid\n");
}

TEST_F(FileDialogTest, TakesTheOtherProgramWhereItIsTheOnlyOne) {
    folder.Program("kdialog", "printf '%s\\n' \"$@\" > " + (folder / "told") + "; echo /music/a.mid");
    ASSERT_TRUE(dialog.Start(midiFile));
    EXPECT_EQ(Answer(), State::chosen);
    EXPECT_EQ(ReadAll(folder / "told"),
              "--title\nSelect MIDI file\n--getsavefilename\nmidi_output.mid\nMIDI Files (*.mid)\n");
}

TEST_F(FileDialogTest, ANameWithoutAnExtensionGetsTheOneAskedFor) {
    folder.Program("zenity", "echo /home/me.too/take");
    ASSERT_TRUE(dialog.Start(midiFile));
    EXPECT_EQ(Answer(), State::chosen);
    EXPECT_EQ(dialog.Path(), "/home/me.too/take.mid");
}

// Only the last line break is the program's; a path may hold others.
TEST_F(FileDialogTest, KeepsLineBreaksAndQuotesOfAPath) {
    folder.Program("zenity", "printf '/tmp/a\\nb \"c\".mid\\n'");
    ASSERT_TRUE(dialog.Start(midiFile));
    EXPECT_EQ(Answer(), State::chosen);
    EXPECT_EQ(dialog.Path(), "/tmp/a\nb \"c\".mid");
}

TEST_F(FileDialogTest, TellsACancelFromAFailure) {
    folder.Program("zenity", "exit 1");
    ASSERT_TRUE(dialog.Start(midiFile));
    EXPECT_EQ(Answer(), State::cancelled);
    folder.Program("zenity", "exit 255");
    ASSERT_TRUE(dialog.Start(midiFile));
    EXPECT_EQ(Answer(), State::failed);
    folder.Program("zenity", "kill -SEGV $$");
    ASSERT_TRUE(dialog.Start(midiFile));
    EXPECT_EQ(Answer(), State::failed);
}

TEST_F(FileDialogTest, WithoutAProgramThereIsNoDialog) {
    EXPECT_FALSE(dialog.Start(midiFile));
    EXPECT_EQ(dialog.Poll(), State::failed);
}

TEST_F(FileDialogTest, AFloodOfOutputIsReadAndForgotten) {
    folder.Program("zenity", "/usr/bin/head -c 1048576 /dev/zero | /usr/bin/tr '\\0' x");
    ASSERT_TRUE(dialog.Start(midiFile));
    EXPECT_EQ(Answer(), State::chosen);
    EXPECT_EQ(dialog.Path().size(), FileDialog::answerRoom + 4);  // what was kept, and ".mid"
}

// The program and what it started are gone when the dialog is: the pid that it wrote down names nobody.
TEST_F(FileDialogTest, EndingItLeavesNoProcess) {
    folder.Program("zenity", "/bin/sleep 1000 & echo $! > " + (folder / "pid") + ".part; /bin/mv " +
                                 (folder / "pid") + ".part " + (folder / "pid") + "; wait");
    ASSERT_TRUE(dialog.Start(midiFile));
    for (int round = 0; round < 3000 && !folder.Has("pid"); ++round)
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    const pid_t sleeper = std::stoi(ReadAll(folder / "pid"));
    ASSERT_EQ(kill(sleeper, 0), 0);
    EXPECT_EQ(dialog.Poll(), State::running);
    dialog.End();
    // Orphaned, it is reaped by the system; until then it is a dead entry that the signal still finds.
    const std::string state = "/proc/" + std::to_string(sleeper) + "/stat";
    const auto gone = [&] {
        std::ifstream file(state);
        std::string line;
        return !std::getline(file, line) || line.find(") Z ") != std::string::npos;
    };
    for (int round = 0; round < 3000 && !gone(); ++round)
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    EXPECT_TRUE(gone());
    EXPECT_EQ(dialog.Poll(), State::idle);
}

TEST_F(FileDialogTest, TheProgramInheritsNothingButTheStandardFiles) {
    const int kept =
        open("/dev/null", O_RDONLY);  // without close-on-exec, as a careless host opens its files
    folder.Program("zenity",
                   "/bin/ls /proc/self/fd | /usr/bin/wc -l > " + (folder / "count") + "; echo a.mid");
    ASSERT_TRUE(dialog.Start(midiFile));
    EXPECT_EQ(Answer(), State::chosen);
    close(kept);
    EXPECT_EQ(std::stoi(ReadAll(folder / "count")), 4);  // 0, 1, 2, and the folder that ls reads
}
