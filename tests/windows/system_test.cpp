// What the program asks of Windows: settings, files and the dialog for a file's name, in any language.
#include "base/file_path.h"
#include "desktop/file_dialog.h"
#include "desktop/user_store.h"
#include "notes/stream.h"
#include "tests/support/test.h"

#include <windows.h>

#include <dlgs.h>

namespace {

HWND Shown() {
    return FindWindowW(nullptr, L"Select MIDI file");
}

TEST(Settings, AreDefaultValuesOfKeysOfTheUser) {
    ASSERT_TRUE(writeRegistryString("Name", "J\u00f6rg \u5c71"));
    wchar_t stored[32] = {};
    DWORD size = sizeof stored;
    ASSERT_EQ(RegGetValueW(HKEY_CURRENT_USER, L"Software\\ORVA Labs\\ORVA Audio To MIDI VST 1.30\\Name",
                           nullptr, RRF_RT_REG_SZ, nullptr, stored, &size),
              ERROR_SUCCESS);
    EXPECT_STREQ(stored, L"J\u00f6rg \u5c71");
    EXPECT_EQ(readRegistryString("Name"), "J\u00f6rg \u5c71");
    EXPECT_EQ(readRegistryString("Absent"), "");
    for (const std::size_t length : {255U, 256U}) {  // bytes: as much as a reader takes, and one more
        ASSERT_TRUE(writeRegistryString("Name", std::string(length, 'x')));
        EXPECT_EQ(readRegistryString("Name").size(), length == 255 ? 255U : 0U);
    }
}

// The dialog adds the extension, and gives a name that files are opened by.
TEST(FileDialog, GivesTheNameOfAnyLanguage) {
    FileDialog dialog;
    const std::wstring folder = std::filesystem::temp_directory_path().wstring();
    DeleteFileW((folder + L"\u66f2.mid").c_str());
    ASSERT_TRUE(dialog.Start({"Select MIDI file", "MIDI Files (*.mid)", "mid", "midi_output.mid"}));
    ASSERT_TRUE(AwaitThat([] { return IsWindowVisible(Shown()) && GetDlgItem(Shown(), cmb13) != nullptr; }));
    SetDlgItemTextW(Shown(), cmb13, (folder + L"\u66f2").c_str());
    PostMessageW(Shown(), WM_COMMAND, IDOK, 0);
    ASSERT_TRUE(AwaitThat([&] { return dialog.Poll() != FileDialog::State::running; }));
    ASSERT_EQ(dialog.Poll(), FileDialog::State::chosen);
    EXPECT_EQ(FilePath(dialog.Path()).wstring(), folder + L"\u66f2.mid");
    TFStream(dialog.Path(), std::ios_base::out | std::ios_base::binary, TFStream::defaultBuffer);
    EXPECT_NE(GetFileAttributesW((folder + L"\u66f2.mid").c_str()), INVALID_FILE_ATTRIBUTES);
    // An editor that closes takes its dialog along.
    ASSERT_TRUE(dialog.Start({"Select MIDI file", "MIDI Files (*.mid)", "mid", ""}));
    ASSERT_TRUE(AwaitThat([] { return Shown() != nullptr; }));
    dialog.End();
    EXPECT_EQ(dialog.Poll(), FileDialog::State::idle);
    ASSERT_TRUE(AwaitThat([] { return Shown() == nullptr; }));
}

}  // namespace
