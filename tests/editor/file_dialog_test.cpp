#include "desktop/file_dialog.h"

#include "tests/support/temp_folder.h"

namespace {

using State = FileDialog::State;

class FileDialogTest : public testing::Test {
protected:
    FileDialogTest() { folder.BecomePath(false); }
    ~FileDialogTest() override { setenv("PATH", "/usr/local/bin:/usr/bin:/bin", 1); }

    // Runs a script in the place of the program, to its answer.
    State Answer(const std::string& program, const std::string& script) {
        folder.Program(program, script);
        EXPECT_TRUE(dialog.Start({"Take; $(touch x) \"1\"", "MIDI Files (*.mid)", "mid", "midi_output.mid"}));
        AwaitThat([this] { return dialog.Poll() != State::running; });
        return dialog.Poll();
    }
    TempFolder folder;
    FileDialog dialog;
};

TEST_F(FileDialogTest, GivesEachArgumentAsItIsToTheInstalledProgram) {
    EXPECT_FALSE(dialog.Start({"title", "filter", "mid", ""}));  // there is none
    EXPECT_EQ(dialog.Poll(), State::failed);
    const std::string keep = "printf '%s\\n' \"$@\" > " + (folder / "words") + "; echo /music/a.mid";
    EXPECT_EQ(Answer("kdialog", keep), State::chosen);
    EXPECT_EQ(ReadAll(folder / "words"),
              "--title\nTake; $(touch x) \"1\"\n--getsavefilename\nmidi_output.mid\nMIDI Files (*.mid)\n");
    EXPECT_EQ(Answer("zenity", keep), State::chosen);
    EXPECT_EQ(ReadAll(folder / "words"),
              "--file-selection\n--save\n--confirm-overwrite\n--title=Take; $(touch x) \"1\"\n"
              "--filename=midi_output.mid\n--file-filter=MIDI Files (*.mid) | *.mid\n");
}

TEST_F(FileDialogTest, DistinguishesAChoiceFromACancelAndAFailure) {
    const struct {
        const char* script;
        State state;
        std::string path;  // where one is chosen
    } answers[] = {
        {"echo /home/me.too/take", State::chosen, "/home/me.too/take.mid"},  // gets the extension asked for
        {"echo /home/.take", State::chosen, "/home/.take.mid"},              // a dot in front begins none
        {"exit 1", State::cancelled, ""},
        {"kill -SEGV $$", State::failed, ""},
    };
    for (const auto& [script, state, path] : answers) {
        ASSERT_EQ(Answer("zenity", script), state) << script;
        EXPECT_EQ(state == State::chosen ? dialog.Path() : "", path);
    }
}

// The program and what it started are gone when the dialog is.
TEST_F(FileDialogTest, LeavesNoProcessBehind) {
    folder.Program("zenity",
                   "cd " + folder.path.string() + "; /bin/sleep 1000 & echo $! > new; /bin/mv new pid; wait");
    ASSERT_TRUE(dialog.Start({"title", "filter", "mid", ""}));
    ASSERT_TRUE(AwaitThat([this] { return folder.Has("pid"); }));
    const std::string sleeper = "/proc/" + std::to_string(std::stoi(ReadAll(folder / "pid"))) + "/stat";
    ASSERT_NE(ReadAll(sleeper), "");
    std::signal(SIGCHLD, SIG_IGN);  // as hosts may, and then there is no status to wait for
    dialog.End();
    std::signal(SIGCHLD, SIG_DFL);
    // Orphaned, it is reaped by the system; until then it is a dead entry.
    EXPECT_TRUE(AwaitThat([&] {
        const std::string entry = ReadAll(sleeper);
        return entry.empty() || entry.find(") Z ") != std::string::npos;
    }));
}

// The dialog gives a name without its extension, and the second time another one. The question about the file
// that exists with the extension ends with a code.
TEST_F(FileDialogTest, AsksBeforeItNamesAFileThatExists) {
    const struct {
        int code;
        State state;
        const char* chosen;
    } rows[] = {{0, State::chosen, "song.mid"},
                {1, State::chosen, "other.mid"},  // declined leads back to the dialog
                {255, State::failed, ""}};        // a question that cannot be shown is no permission
    WriteAll(folder / "song.mid", "a take");
    for (const auto& [code, state, chosen] : rows) {
        std::filesystem::remove(folder / "second");
        const std::string script = "cd " + folder.path.string() + "; case $1 in --question) exit " +
                                   std::to_string(code) +
                                   ";; esac; if [ -e second ]; then echo $PWD/other.mid; "
                                   "else : > second; echo $PWD/song; fi";
        ASSERT_EQ(Answer("zenity", script), state) << code;
        EXPECT_EQ(state == State::chosen ? dialog.Path() : folder / "", folder / chosen);
    }
}

}  // namespace
