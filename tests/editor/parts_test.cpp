// The parts of the editor that know no toolkit.
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "editor/equalizer_stroke.h"
#include "editor/help_file.h"
#include "editor/idle_clock.h"
#include "editor/level_column.h"
#include "editor/mailbox.h"
#include "editor/pictures.h"
#include "tests/support/temp_folder.h"

namespace {

namespace fs = std::filesystem;
using Heights = std::vector<std::pair<int, int>>;  // bar, pixels
using Letters = std::vector<std::pair<std::int32_t, float>>;

int XOf(int bar) {
    return 3 * bar + 1;
}

// The control of the equalizer page: 253 by 206 pixels, a bar every 3, the highest bar 203 pixels.
TEST(EqualizerStroke, SetsTheBarsThatTheMousePassesWithoutGaps) {
    const struct {
        std::vector<std::pair<int, int>> moves;  // x and y, the last of which counts
        Heights set;
    } rows[] = {
        {{{XOf(0), 100}}, {{0, 103}}},  // 203 - 100
        {{{XOf(83), 100}}, {{83, 103}}},
        {{{252, 100}}, {}},             // the last pixel belongs to no bar
        {{{XOf(5), -40}}, {{5, 202}}},  // the lowest y is 1
        {{{XOf(5), 205}}, {{5, 0}}},
        {{{XOf(5), 9000}}, {{5, 0}}},
        // From bar 10 at y 50 to bar 20 at y 70: bar b lies at 50 + 20 * (b - 10) / 10, and its height is 203
        // less that.
        {{{XOf(10), 50}, {XOf(20), 70}},
         {{20, 133},
          {11, 151},
          {12, 149},
          {13, 147},
          {14, 145},
          {15, 143},
          {16, 141},
          {17, 139},
          {18, 137},
          {19, 135}}},
        // Backwards over three bars, from y 10 to y 20, in integers: 10 + 10 * -1 / -3 = 13, then 16.
        {{{XOf(9), 10}, {XOf(6), 20}}, {{6, 183}, {8, 190}, {7, 187}}},
        {{{XOf(4), 80}, {XOf(4), 80}}, {}},  // a mouse that rests
        {{{XOf(4), 80}, {XOf(4), 80}, {XOf(4), 81}}, {{4, 122}}},
        // Outside, the bar at the edge is set once.
        {{{XOf(82), 100}, {400, 100}}, {{83, 103}}},
        {{{XOf(82), 100}, {400, 100}, {500, 30}}, {}},
        {{{XOf(82), 100}, {400, 100}, {500, 30}, {500, 90}}, {}},
        {{{XOf(82), 100}, {400, 100}, {500, 30}, {XOf(83), 30}}, {{83, 173}}},
        {{{XOf(1), 100}, {-20, 60}}, {{0, 143}}},
        {{{XOf(1), 100}, {-20, 60}, {-30, 10}}, {}},
    };
    EqualizerStroke stroke(253, 206, 3);  // a new press forgets where the last one ended
    for (const auto& [moves, expected] : rows) {
        Heights set;
        stroke.Begin();
        for (const auto& [x, y] : moves) {
            set.clear();
            stroke.MoveTo(x, y, [&](int bar, int pixels) { set.emplace_back(bar, pixels); });
        }
        stroke.End();
        EXPECT_EQ(set, expected) << "at " << moves.back().first << ", " << moves.back().second;
    }
}

// Calls every 33 ms: 100 of them are 3300 ms, 66 whole steps, although no call alone comes near one and a
// half. The tick count wraps on the way.
TEST(IdleClock, LosesNoTimeToRoundingOrWrapping) {
    std::uint32_t steps = 0, last = 0xFFFFFFF0;
    for (std::uint32_t now = last + 33; now != 0xFFFFFFF0 + 3333; now += 33) {
        const std::uint32_t whole = WholeIdleSteps(now, last);
        last = AdvanceIdleTick(last, whole);
        steps += whole;
    }
    EXPECT_EQ(steps, 66U);
    EXPECT_EQ(last, 0xFFFFFFF0 + 3300);
}

TEST(LevelColumn, ThePaletteRunsFromOneBlueToTheOtherAndEndsInOrange) {
    const struct {
        int entry, red, green, blue;
    } rows[] = {{0, 147, 186, 216},
                {128, 147 - 83 * 128 / 255, 186 - 34 * 128 / 255, 216 + 5 * 128 / 255},
                {254, 65, 153, 220},  // not quite the second blue, 64, 152, 221
                {255, 255, 150, 70}};
    for (const auto& [entry, red, green, blue] : rows) {
        const PaletteColor color = PaletteEntry(entry);
        EXPECT_TRUE(color.red == red && color.green == green && color.blue == blue) << entry;
    }
    // Band b fills pixels 3 * (83 - b) to 3 * (83 - b) + 2, so the lowest `count` bands fill the lowest 3 *
    // count.
    for (const std::size_t count : {0U, 1U, 83U, 84U, 85U, 128U}) {
        const auto column = ColumnOf(std::vector<unsigned char>(count, 100));
        const std::size_t filled = 3 * std::min<std::size_t>(count, 84);
        for (std::size_t y = 0; y < column.size(); ++y)
            ASSERT_EQ(column[y], y >= column.size() - filled ? 100 : 0) << count << " bands, pixel " << y;
    }
}

TEST(Mailbox, HandsOutTheNewestValueOfEachIndexOnceAndAscending) {
    Mailbox box;
    for (const auto& [index, value] : Letters{{98, 0.0F}, {63, 0.25F}, {64, 0.5F}, {0, 1.0F}, {63, 0.75F}})
        box.post(index, value);
    Letters letters;
    const auto take = [&](std::int32_t index, float value) { letters.emplace_back(index, value); };
    box.drain(take);
    box.drain(take);
    EXPECT_EQ(letters, (Letters{{0, 1.0F}, {63, 0.75F}, {64, 0.5F}, {98, 0.0F}}));
}

// What is posted while the box is being emptied comes out then or the next time, never not at all.
TEST(Mailbox, LosesNoLastValueOfAnotherThread) {
    constexpr int rounds = 20000;
    Mailbox box;
    std::thread poster([&] {
        for (int i = 1; i <= rounds; ++i) box.post(i % 3, static_cast<float>(i));
    });
    float last[3] = {};
    // Of 20000 values, 19998 is the last divisible by 3; 19999 and 20000 leave 1 and 2.
    while (last[0] < 19998 || last[1] < 19999 || last[2] < 20000)
        box.drain([&](std::int32_t index, float value) {
            EXPECT_GE(value, last[index]);
            last[index] = value;
        });
    poster.join();
}

// The layout of the window rests on these sizes; each of the last five holds two states, one above the other.
TEST(Pictures, AreWholeFilesOfTheSizesThatTheWindowIsLaidOutFor) {
    const struct {
        std::int32_t id, width, height;
    } wanted[] = {
        {103, 400, 320}, {104, 22, 216},  {105, 21, 21},  {110, 176, 16},  {111, 221, 16}, {112, 18, 18},
        {113, 267, 263}, {114, 51, 34},   {115, 51, 34},  {116, 51, 34},   {117, 51, 34},  {118, 267, 263},
        {119, 74, 34},   {121, 113, 34},  {122, 113, 34}, {123, 113, 34},  {124, 226, 22}, {125, 226, 22},
        {126, 226, 22},  {128, 267, 263}, {129, 51, 34},  {130, 51, 34},   {131, 51, 34},  {132, 51, 34},
        {133, 51, 34},   {135, 267, 263}, {136, 25, 252}, {177, 267, 263},
    };
    for (const auto& [id, width, height] : wanted) {
        EXPECT_EQ(SizeOfPicture(id).width, width) << id;
        EXPECT_EQ(SizeOfPicture(id).height, height) << id;
    }
    for (const std::int32_t small : {138, 139, 140, 141, 142}) {
        EXPECT_NEAR(SizeOfPicture(small).width, 18, 1) << small;
        EXPECT_EQ(SizeOfPicture(small).height % 2, 0) << small;
    }
    EXPECT_EQ(AllPictures().size(), std::size(wanted) + 5);
    const std::string signature = "\x89PNG\r\n\x1A\n", last("\0\0\0\0IEND\xAE\x42\x60\x82", 12);
    for (const Picture& each : AllPictures()) {
        const std::string bytes(each.begin, each.end);
        EXPECT_TRUE(bytes.starts_with(signature) && bytes.ends_with(last)) << each.id;
    }
    EXPECT_EQ(FindPicture(120), nullptr);
    EXPECT_EQ(SizeOfPicture(-1).width, 0);
}

TEST(HelpFile, IsFoundInABuildAndUnderThePrefixOfAPackage) {
    const TempFolder folder;
    const auto write = [](const fs::path& file) {
        fs::create_directories(file.parent_path());
        std::ofstream(file) << "<!DOCTYPE html>";
    };
    const fs::path build = folder / "build", manual = build / "manual/manual.html", prefix = folder / "usr";
    const fs::path lv2 = prefix / "share/doc/orva-lv2/manual.html",
                   vst = prefix / "share/doc/orva-vst/manual.html";
    EXPECT_EQ(ManualOf(build), fs::path());
    write(manual);
    EXPECT_EQ(ManualOf(build), manual);
    EXPECT_EQ(ManualOf(build / "orva.lv2"), manual);
    write(lv2);
    EXPECT_EQ(ManualOf(prefix / "lib/lv2/orva.lv2"), lv2);
    write(vst);
    fs::create_directories(prefix / "lib/vst/orva_vst.html");  // a folder is no page
    EXPECT_EQ(ManualOf(prefix / "lib/vst"), vst);
    EXPECT_EQ(ManualOf(prefix / "lib/x86_64-linux-gnu/vst"), vst);
    for (const fs::path& none :
         {build / "lib/vst", folder.path / "home/.vst", fs::path("/"), fs::path("no/folder")})
        EXPECT_EQ(ManualOf(none), fs::path()) << none;
}

}  // namespace
