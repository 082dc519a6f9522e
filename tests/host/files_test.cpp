// The places of files.
#include <sys/stat.h>

#include "tests/support/temp_folder.h"
#include "tools/host/output_file.h"

namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

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

TEST(OutputFile, WhatWouldBeLostByMistakeIsRefused) {
    const TempFolder folder;
    const std::string sound = folder / "a.wav", midi = folder / "a.mid", list = folder / "list";
    WriteAll(sound, "RIFFsound");
    WriteAll(midi, "MThdnotes");
    const auto guard = [&](const Names& paths, bool force) {
        std::vector<PlannedOutput> outputs;
        for (const std::string& path : paths) outputs.push_back({"--midi", path, midiFirstBytes});
        GuardOutputs(outputs, {list}, force);
    };
    EXPECT_NO_THROW(guard({midi, folder / "new.mid", "/dev/null", "/dev/null"}, false));
    EXPECT_THROW(guard({sound}, false), std::invalid_argument);
    EXPECT_NO_THROW(guard({sound}, true));
    EXPECT_THROW(guard({list}, true), std::invalid_argument);
    EXPECT_THROW(guard({"new.mid", "./new.mid"}, true), std::invalid_argument);
}

}  // namespace
