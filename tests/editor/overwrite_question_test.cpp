// What the file dialog asks before it names a file that exists, with programs in the place of the desktop's.
#include <gtest/gtest.h>

#include "desktop/file_dialog.h"
#include "tests/support/await.h"
#include "tests/support/temp_folder.h"

namespace {

class OverwriteQuestion : public testing::Test {
protected:
    OverwriteQuestion() {
        WriteAll(folder / "song.mid", "a take");
        folder.BecomePath(false);
    }
    ~OverwriteQuestion() override { setenv("PATH", "/usr/local/bin:/usr/bin:/bin", 1); }

    // The dialog gives `song` without its extension, and after that `other.mid`; the question ends with
    // `code`.
    FileDialog::State Answer(const std::string& code) {
        const std::string begin = "cd " + folder.path.string() + "; printf '%s\\n' \"$@\" >> told; ";
        folder.Program("zenity", begin + "case $1 in --question) exit " + code +
                                     ";; esac; if [ -e second ]; then echo $PWD/other.mid; "
                                     "else : > second; echo $PWD/song; fi");
        dialog.Start({"Select MIDI file", "MIDI Files (*.mid)", "mid", "midi_output.mid"});
        AwaitThat([this] { return dialog.Poll() != FileDialog::State::running; });
        return dialog.Poll();
    }
    bool WasAsked() const {
        return ReadAll(folder / "told").find("--text=A file named \"song.mid\" already exists.") !=
               std::string::npos;
    }

    TempFolder folder;
    FileDialog dialog;
};

}  // namespace

TEST_F(OverwriteQuestion, ComesWhereTheAddedExtensionNamesAFileThatExists) {
    ASSERT_EQ(Answer("0"), FileDialog::State::chosen);
    EXPECT_TRUE(WasAsked());
    EXPECT_EQ(dialog.Path(), folder / "song.mid");
}

TEST_F(OverwriteQuestion, DeclinedLeadsBackToTheDialog) {
    ASSERT_EQ(Answer("1"), FileDialog::State::chosen);
    EXPECT_TRUE(WasAsked());
    EXPECT_EQ(dialog.Path(), folder / "other.mid");
    EXPECT_NE(ReadAll(folder / "told").find("--filename=" + folder / "song.mid" + "\n"), std::string::npos);
}

TEST_F(OverwriteQuestion, ThatCannotBeShownIsNoLeave) {
    EXPECT_EQ(Answer("255"), FileDialog::State::failed);
}

TEST_F(OverwriteQuestion, DoesNotComeForANewFile) {
    std::filesystem::remove(folder.path / "song.mid");
    ASSERT_EQ(Answer("1"), FileDialog::State::chosen);
    EXPECT_FALSE(WasAsked());
    EXPECT_EQ(dialog.Path(), folder / "song.mid");
}
