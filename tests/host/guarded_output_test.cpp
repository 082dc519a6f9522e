#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/support/temp_folder.h"
#include "tools/host/output_file.h"

TEST(GuardedOutput, WhatWouldBeLostByMistakeIsRefused) {
    const TempFolder folder;
    const std::string sound = folder / "a.wav", midi = folder / "a.mid", empty = folder / "empty";
    WriteAll(sound, "RIFFsound");
    WriteAll(midi, "MThdnotes");
    WriteAll(empty, "");
    const auto refused = [&](const std::vector<std::string>& paths, bool force) {
        std::vector<PlannedOutput> outputs;
        for (const std::string& path : paths) outputs.push_back({"--midi", path, midiFirstBytes});
        try {
            GuardOutputs(outputs, {folder / "list"}, force);
            return false;
        } catch (const std::invalid_argument&) {
            return true;
        }
    };
    EXPECT_FALSE(refused({midi, empty, folder / "new.mid", "/dev/null", "/dev/null"}, false));
    EXPECT_TRUE(refused({sound}, false));
    EXPECT_FALSE(refused({sound}, true));
    for (const bool force : {false, true}) {
        EXPECT_TRUE(refused({folder / "list"}, force));
        EXPECT_TRUE(refused({""}, force));
        EXPECT_TRUE(refused({"-"}, force));
        EXPECT_TRUE(refused({"new.mid", "./new.mid"}, force));
    }
}

TEST(GuardedOutput, AReplacedFileKeepsItsPermissionsAndMayHaveTheLongestName) {
    const TempFolder folder;
    const std::string file = folder / std::string(255, 'n');
    WriteAll(file, "old");
    ASSERT_EQ(chmod(file.c_str(), 0640), 0);
    WriteWhole(file, "new");
    struct stat now = {};
    ASSERT_EQ(stat(file.c_str(), &now), 0);
    EXPECT_EQ(now.st_mode & 0777U, 0640U);
    EXPECT_EQ(ReadAll(file), "new");
    EXPECT_EQ(folder.Files(), 1U);
}
