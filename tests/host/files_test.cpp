// The places of files, and how far a run over several has come.
#include <gmock/gmock.h>
#include <pty.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/temp_folder.h"
#include "tools/host/output_file.h"
#include "tools/host/progress.h"

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

TEST(Progress, IsTheMeanOfAllFilesOnATerminal) {
    int terminal = -1, side = -1;
    ASSERT_EQ(openpty(&terminal, &side, nullptr, nullptr, nullptr), 0);
    setenv("TERM", "xterm", 1);
    const int before = dup(STDERR_FILENO);
    dup2(side, STDERR_FILENO);
    {
        Progress progress(2);
        for (const auto& [file, share] : {std::pair{0U, 0.5}, {0U, 1.0}, {1U, 0.5}})
            progress.Advance(file, share);
    }
    dup2(before, STDERR_FILENO);
    std::string text;  // the terminal hands it over in pieces
    for (char piece[256]; text.find("\033[K") == std::string::npos;) {
        const ssize_t count = read(terminal, piece, sizeof piece);
        ASSERT_GT(count, 0);
        text.append(piece, static_cast<std::size_t>(count));
    }
    EXPECT_THAT(text, testing::ContainsRegex("25%.* 50%.* 75%"));
    for (const int each : {before, terminal, side}) close(each);
}

}  // namespace
