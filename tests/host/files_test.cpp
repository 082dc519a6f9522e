// The places of files, and their lists.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/support/temp_folder.h"
#include "tools/host/audio_folder.h"
#include "tools/host/file_list.h"
#include "tools/host/output_file.h"

namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

// A link that leads upwards would be followed for ever.
TEST(AudioFolder, FindsRecordingsAtAnyDepthAndNothingElse) {
    const TempFolder folder;
    for (const char* const name : {"b/x.Flac", "b/deep/er/y.mp3", "a.wav", "notes.txt", "z.opus.part", "wav",
                                   ".hidden.wav", ".cache/c.wav", "b/take.wav/z.ogg"}) {
        fs::create_directories(fs::path(folder / name).parent_path());
        WriteAll(folder / name, "");
    }
    fs::create_directory_symlink(folder.path, folder / "b/up");
    fs::create_symlink(folder / "a.wav", folder / "b/link.wav");
    EXPECT_EQ(RecordingsIn(folder.path.string()),
              (Names{folder / "a.wav", folder / "b/deep/er/y.mp3", folder / "b/link.wav",
                     folder / "b/take.wav/z.ogg", folder / "b/x.Flac"}));
    EXPECT_EQ(WithFoldersSearched({folder / "none.wav", folder / ".cache"}),
              (Names{folder / "none.wav", folder / ".cache/c.wav"}));
}

TEST(FileList, HasANameALineOrUpToEachZeroByte) {
    EXPECT_EQ(SplitFileList("a.wav\n\n b c.wav\nd.wav"), (Names{"a.wav", " b c.wav", "d.wav"}));
    EXPECT_EQ(SplitFileList(std::string("a\nb.wav\0c.wav\0", 14)), (Names{"a\nb.wav", "c.wav"}));
    EXPECT_EQ(SplitFileList("\xEF\xBB\xBF#EXTM3U\r\n#EXTINF:1\r\na.wav\r\n"), Names{"a.wav"});
    EXPECT_EQ(SplitFileList("#1.wav\r\n"), Names{"#1.wav"});
}

TEST(OutputFile, ReplacesTheOldOneWholeOrNotAtAllAndKeepsItsPermissions) {
    const TempFolder folder;
    const std::string real = folder / std::string(255, 'n'), link = folder / "link";  // the longest name
    WriteAll(real, "a longer text than the new one");
    ASSERT_EQ(chmod(real.c_str(), 0640), 0);
    fs::create_symlink(fs::path(real).filename(), link);
    WriteWhole(link, "new");
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(ReadAll(real), "new");
    EXPECT_EQ(fs::status(real).permissions(), static_cast<fs::perms>(0640));
    EXPECT_THROW(WriteWhole("/dev/full", "x"), std::runtime_error);
    EXPECT_EQ(folder.Files(), 2U);  // no draft is left
}

TEST(OutputFile, EachRecordingHasItsOwnAndNoneIsReplaced) {
    const TempFolder folder;
    const fs::path inside = folder.path;
    EXPECT_EQ(OutputPaths({"x/a.wav", "y/b.c.ogg"}, inside, ".csv"),
              (std::vector<fs::path>{inside / "a.csv", inside / "b.c.csv"}));
    EXPECT_EQ(OutputPaths({"x/a.wav", "c.flac"}, "out/{dir}/{name}-{name}.mid", ".csv"),
              (std::vector<fs::path>{"out/x/a-a.mid", "out/./c-c.mid"}));
    EXPECT_THROW(OutputPaths({"a.wav", "b.wav"}, "out.csv", ".csv"), std::invalid_argument);
    EXPECT_THROW(OutputPaths({"x/a.wav", "y/a.ogg"}, inside, ".csv"), std::invalid_argument);
}

TEST(OutputFile, WhatWouldBeLostByMistakeIsRefused) {
    const TempFolder folder;
    const std::string sound = folder / "a.wav", midi = folder / "a.mid", list = folder / "list";
    WriteAll(sound, "RIFFsound");
    WriteAll(midi, "MThdnotes");
    const struct {
        Names outputs;
        bool refused, evenByForce;
    } rows[] = {{{midi, folder / "new.mid", "/dev/null", "/dev/null"}, false, false},
                {{sound}, true, false},
                {{list}, true, true},
                {{"new.mid", "./new.mid"}, true, true}};
    for (const auto& row : rows)
        for (const bool force : {false, true}) {
            std::vector<PlannedOutput> outputs;
            for (const std::string& path : row.outputs) outputs.push_back({"--midi", path, midiFirstBytes});
            if (force ? row.evenByForce : row.refused)
                EXPECT_THROW(GuardOutputs(outputs, {list}, force), std::invalid_argument) << row.outputs[0];
            else
                EXPECT_NO_THROW(GuardOutputs(outputs, {list}, force)) << row.outputs[0];
        }
}

}  // namespace
