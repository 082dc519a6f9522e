#include "platform/file_dialog.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "tests/support/await.h"
#include "tests/support/temp_folder.h"

namespace {

using State = FileDialog::State;

const FileDialogRequest midiFile = {"Select MIDI file", "MIDI Files (*.mid)", "mid", "midi_output.mid"};

class FileDialogTest : public testing::Test {
protected:
    FileDialogTest() { folder.BecomePath(false); }
    ~FileDialogTest() override { setenv("PATH", "/usr/local/bin:/usr/bin:/bin", 1); }

    State Answer() {
        AwaitThat([this] { return dialog.Poll() != State::running; });
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

TEST_F(FileDialogTest, TellsAChoiceFromACancelAndAFailure) {
    const struct {
        const char* script;
        State state;
        const char* path;  // where one is chosen
    } answers[] = {
        {"echo /home/me.too/take", State::chosen, "/home/me.too/take.mid"},  // gets the extension asked for
        {"printf '/a\\nb \"c\".mid\\n'", State::chosen,
         "/a\nb \"c\".mid"},  // the last line break is not its own
        {"exit 1", State::cancelled, ""},
        {"exit 255", State::failed, ""},
        {"kill -SEGV $$", State::failed, ""},
    };
    for (const auto& [script, state, path] : answers) {
        folder.Program("zenity", script);
        ASSERT_TRUE(dialog.Start(midiFile));
        ASSERT_EQ(Answer(), state) << script;
        EXPECT_EQ(state == State::chosen ? dialog.Path() : "", path);
    }
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
    folder.Program("zenity",
                   "cd " + folder.path.string() + "; /bin/sleep 1000 & echo $! > new; /bin/mv new pid; wait");
    ASSERT_TRUE(dialog.Start(midiFile));
    ASSERT_TRUE(AwaitThat([this] { return folder.Has("pid"); }));
    const std::string sleeper = "/proc/" + std::to_string(std::stoi(ReadAll(folder / "pid"))) + "/stat";
    ASSERT_NE(ReadAll(sleeper), "");
    EXPECT_EQ(dialog.Poll(), State::running);
    dialog.End();
    // Orphaned, it is reaped by the system; until then it is a dead entry.
    EXPECT_TRUE(AwaitThat([&] {
        const std::string entry = ReadAll(sleeper);
        return entry.empty() || entry.find(") Z ") != std::string::npos;
    }));
    EXPECT_EQ(dialog.Poll(), State::idle);
}

TEST_F(FileDialogTest, TheProgramInheritsNothingButTheStandardFiles) {
    const int kept = open("/dev/null", O_RDONLY);  // without close-on-exec, as a careless host opens files
    folder.Program("zenity",
                   "/bin/ls /proc/self/fd | /usr/bin/wc -l > " + (folder / "count") + "; echo a.mid");
    ASSERT_TRUE(dialog.Start(midiFile));
    EXPECT_EQ(Answer(), State::chosen);
    close(kept);
    EXPECT_EQ(std::stoi(ReadAll(folder / "count")), 4);  // 0, 1, 2, and the folder that ls reads
}
