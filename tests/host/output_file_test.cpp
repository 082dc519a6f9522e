#include "tools/host/output_file.h"

#include <gtest/gtest.h>

#include "tests/support/temp_folder.h"

namespace fs = std::filesystem;

TEST(OutputFile, TakesThePlaceOfTheOldOneAndLeavesNothingBeside) {
    const TempFolder folder;
    WriteAll(folder / "a.csv", "a longer text than the new one");
    WriteWhole(folder / "a.csv", "new");
    EXPECT_EQ(ReadAll(folder / "a.csv"), "new");
    EXPECT_EQ(folder.Files(), 1U);
}

TEST(OutputFile, ALinkStaysALink) {
    const TempFolder folder;
    WriteAll(folder / "real.csv", "old");
    fs::create_symlink("real.csv", folder / "link.csv");
    WriteWhole(folder / "link.csv", "new");
    EXPECT_TRUE(fs::is_symlink(folder / "link.csv"));
    EXPECT_EQ(ReadAll(folder / "real.csv"), "new");
    EXPECT_EQ(folder.Files(), 2U);
}

TEST(OutputFile, WhatCannotBeWrittenIsToldAndLeavesNothingBehind) {
    const TempFolder folder;
    EXPECT_THROW(WriteWhole(folder / "no/such/folder.csv", "x"), std::runtime_error);
    EXPECT_THROW(WriteWhole("/dev/full", "x"), std::runtime_error);
    fs::create_directory(folder / "taken");
    EXPECT_THROW(WriteWhole(folder / "taken", "x"), std::runtime_error);
    EXPECT_EQ(folder.Files(), 1U);
}

TEST(OutputFile, EachRecordingHasAPlaceOfItsOwnAndNoneIsReplaced) {
    const TempFolder folder;
    const fs::path inside = folder.path;
    EXPECT_EQ(OutputPaths({"x/a.wav"}, "out.csv", ".csv"), std::vector<fs::path>{"out.csv"});
    EXPECT_EQ(OutputPaths({"x/a.wav", "y/b.c.ogg"}, inside, ".csv"),
              (std::vector<fs::path>{inside / "a.csv", inside / "b.c.csv"}));
    EXPECT_THROW(OutputPaths({"a.wav", "b.wav"}, "out.csv", ".csv"), std::invalid_argument);
    EXPECT_THROW(OutputPaths({"x/a.wav", "y/a.ogg"}, inside, ".csv"), std::invalid_argument);
    WriteAll(folder / "a.wav", "sound");
    for (const fs::path& same : {inside / "a.wav", inside / "." / "a.wav"})
        EXPECT_THROW(OutputPaths({folder / "a.wav"}, same, ".csv"), std::invalid_argument);
}

TEST(OutputFile, APatternTakesNameAndFolderFromEachRecording) {
    EXPECT_EQ(OutputPaths({"x/a.wav", "y/a.b.ogg", "c.flac", "/d/{dir}.wav"}, "out/{dir}/{name}-{name}.mid",
                          ".csv"),
              (std::vector<fs::path>{"out/x/a-a.mid", "out/y/a.b-a.b.mid", "out/./c-c.mid",
                                     "out//d/{dir}-{dir}.mid"}));
    EXPECT_THROW(OutputPaths({"x/a.wav", "y/a.wav"}, "{name}.mid", ".mid"), std::invalid_argument);
    EXPECT_THROW(OutputPaths({"a.wav", "./a.ogg"}, "{dir}/{name}.mid", ".mid"), std::invalid_argument);
}

TEST(OutputFile, IsUpToDateUnlessItsRecordingIsNewer) {
    const TempFolder folder;
    const fs::path sound = folder / "a.wav", notes = folder / "a.mid";
    EXPECT_FALSE(IsUpToDate(notes, sound));
    WriteAll(notes, "notes");
    EXPECT_FALSE(IsUpToDate(notes, sound));  // there is no recording to be compared with
    WriteAll(sound, "sound");
    fs::last_write_time(sound, fs::last_write_time(notes));
    EXPECT_TRUE(IsUpToDate(notes, sound));
    fs::last_write_time(sound, fs::last_write_time(notes) + std::chrono::seconds(1));
    EXPECT_FALSE(IsUpToDate(notes, sound));
}
