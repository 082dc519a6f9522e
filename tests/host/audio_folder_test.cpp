#include "tools/host/audio_folder.h"

#include <gtest/gtest.h>

#include "tests/support/temp_folder.h"

// A link that leads upwards would be followed for ever.
TEST(AudioFolder, FindsRecordingsAtAnyDepthAndNothingElse) {
    const TempFolder folder;
    for (const char* const name : {"b/x.Flac", "b/deep/er/y.mp3", "a.wav", "notes.txt", "z.opus.part", "wav",
                                   ".hidden.wav", ".cache/c.wav", "b/take.wav/z.ogg"}) {
        std::filesystem::create_directories(std::filesystem::path(folder / name).parent_path());
        WriteAll(folder / name, "");
    }
    std::filesystem::create_directory_symlink(folder.path, folder / "b/up");
    std::filesystem::create_symlink(folder / "a.wav", folder / "b/link.wav");
    EXPECT_EQ(RecordingsIn(folder.path.string()),
              (std::vector<std::string>{folder / "a.wav", folder / "b/deep/er/y.mp3", folder / "b/link.wav",
                                        folder / "b/take.wav/z.ogg", folder / "b/x.Flac"}));
    EXPECT_EQ(
        WithFoldersSearched({folder / "none.wav", folder / ".cache", folder / "b/deep"}),
        (std::vector<std::string>{folder / "none.wav", folder / ".cache/c.wav", folder / "b/deep/er/y.mp3"}));
}
