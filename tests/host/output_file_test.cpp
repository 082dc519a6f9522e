// The places of files, and the settings that the command line names.
#include "tools/host/output_file.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>

#include "tests/support/temp_folder.h"
#include "tools/host/file_list.h"
#include "tools/host/starting_points.h"

namespace {

namespace fs = std::filesystem;
using Paths = std::vector<fs::path>;

TEST(OutputFile, ReplacesTheOldOneWholeOrNotAtAll) {
    const TempFolder folder;
    WriteAll(folder / "real.csv", "a longer text than the new one");
    fs::create_symlink("real.csv", folder / "link.csv");
    WriteWhole(folder / "link.csv", "new");
    EXPECT_TRUE(fs::is_symlink(folder / "link.csv"));
    EXPECT_EQ(ReadAll(folder / "real.csv"), "new");
    fs::create_directory(folder / "taken");
    for (const std::string& impossible :
         {folder / "no/such/folder.csv", std::string("/dev/full"), folder / "taken"})
        EXPECT_THROW(WriteWhole(impossible, "x"), std::runtime_error);
    EXPECT_EQ(folder.Files(), 3U);  // no draft is left

    const fs::path sound = folder / "a.wav", notes = folder / "a.mid";
    EXPECT_FALSE(IsUpToDate(notes, sound));
    WriteAll(notes, "notes");
    EXPECT_FALSE(IsUpToDate(notes, sound));  // there is no recording to compare it with
    WriteAll(sound, "sound");
    fs::last_write_time(sound, fs::last_write_time(notes));
    EXPECT_TRUE(IsUpToDate(notes, sound));
    fs::last_write_time(sound, fs::last_write_time(notes) + std::chrono::seconds(1));
    EXPECT_FALSE(IsUpToDate(notes, sound));
}

TEST(OutputFile, EachRecordingHasItsOwnAndNoneIsReplaced) {
    const TempFolder folder;
    const fs::path inside = folder.path;
    WriteAll(folder / "a.wav", "sound");
    const struct {
        std::vector<std::string> recordings;
        fs::path target;
        Paths paths;  // none: refused
    } rows[] = {
        {{"x/a.wav"}, "out.csv", {"out.csv"}},
        {{"x/a.wav", "y/b.c.ogg"}, inside, {inside / "a.csv", inside / "b.c.csv"}},
        {{"x/a.wav", "y/a.b.ogg", "c.flac", "/d/{dir}.wav"},
         "out/{dir}/{name}-{name}.mid",
         {"out/x/a-a.mid", "out/y/a.b-a.b.mid", "out/./c-c.mid", "out//d/{dir}-{dir}.mid"}},
        {{"a.wav", "b.wav"}, "out.csv", {}},
        {{"x/a.wav", "y/a.ogg"}, inside, {}},
        {{"x/a.wav", "y/a.wav"}, "{name}.mid", {}},
        {{"a.wav", "./a.ogg"}, "{dir}/{name}.mid", {}},
        {{folder / "a.wav"}, inside / "a.wav", {}},
        {{folder / "a.wav"}, inside / "." / "a.wav", {}},
    };
    for (const auto& [recordings, target, paths] : rows)
        if (paths.empty())
            EXPECT_THROW(OutputPaths(recordings, target, ".csv"), std::invalid_argument) << target;
        else
            EXPECT_EQ(OutputPaths(recordings, target, ".csv"), paths);
}

TEST(FileList, HasANameALineOrUpToEachZeroByte) {
    using Names = std::vector<std::string>;
    EXPECT_EQ(SplitFileList("a.wav\n\n b c.wav\nd.wav"), (Names{"a.wav", " b c.wav", "d.wav"}));
    EXPECT_EQ(SplitFileList(std::string("a\nb.wav\0c.wav\0", 14)), (Names{"a\nb.wav", "c.wav"}));
    EXPECT_EQ(SplitFileList(""), Names{});
    for (const char* none : {"/no/such/list", "/"}) EXPECT_THROW(ReadFileList(none), std::runtime_error);
}

// Bar 0 is C1, MIDI note 24, and parameter 3. The open bars fall by so many dB an octave, and 20 dB are a
// factor of ten in amplitude.
TEST(StartingPoints, SetTwoThresholdsAndShutTheBarsOutsideTheirInstrument) {
    for (const StartingPoint& point : StartingPoints()) {
        std::map<int, float> values;  // by parameter
        for (const ParameterSetting& setting : SettingsFor(point.name)) values[setting.index] = setting.value;
        ASSERT_EQ(values.size(), 2U + 84U) << point.name;
        EXPECT_EQ(values[0], point.polyphony);
        EXPECT_EQ(values[1], point.sensitivity);
        for (int note = 24; note < 24 + 84; ++note) {
            const bool open = note >= point.lowest && note <= point.highest;
            const double decibels = -point.slant * (note - point.lowest) / 12.0;
            EXPECT_NEAR(values[note - 21], open ? std::pow(10, decibels / 20) : 0, 1e-6)
                << point.name << note;
        }
    }
    EXPECT_THROW(SettingsFor("kazoo"), std::invalid_argument);
}

}  // namespace
