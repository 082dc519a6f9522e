#include "editor/level_column.h"

#include <gtest/gtest.h>

#include <vector>

TEST(LevelColumn, ThePaletteRunsFromOneBlueToTheOtherAndEndsInOrange) {
    const auto expect = [](int entry, int red, int green, int blue) {
        EXPECT_EQ(PaletteEntry(entry).red, red) << entry;
        EXPECT_EQ(PaletteEntry(entry).green, green) << entry;
        EXPECT_EQ(PaletteEntry(entry).blue, blue) << entry;
    };
    expect(0, 147, 186, 216);
    // 147 - 83 * 128 / 255 = 147 - 41; 186 - 34 * 128 / 255 = 186 - 17; 216 + 5 * 128 / 255 = 216 + 2
    expect(128, 106, 169, 218);
    // Not quite the second blue: 147 - 83 * 254 / 255 = 147 - 82, 186 - 33, 216 + 4
    expect(254, 65, 153, 220);
    expect(255, 255, 150, 70);
}

TEST(LevelColumn, TakesAnyNumberOfBands) {
    for (const std::size_t count : {0U, 1U, 83U, 84U, 85U, 128U}) {
        const auto column = ColumnOf(std::vector<unsigned char>(count, 100));
        // Band b fills pixels 3 * (83 - b) to 3 * (83 - b) + 2, so the lowest `count` bands fill the lowest 3
        // * count.
        const std::size_t filled = 3 * std::min<std::size_t>(count, 84);
        for (std::size_t y = 0; y < column.size(); ++y)
            ASSERT_EQ(column[y], y >= column.size() - filled ? 100 : 0) << count << " bands, pixel " << y;
    }
}
