#include "tools/host/starting_points.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <stdexcept>

namespace {

constexpr int firstBar = 3, bars = 84, firstBarNote = 24;  // bar 0 is C1, MIDI note 24

}  // namespace

TEST(StartingPoints, EachSetsTwoThresholdsAndShutsTheBarsOutsideItsInstrument) {
    for (const StartingPoint& point : StartingPoints()) {
        SCOPED_TRACE(point.name);
        std::map<int, float> values;  // by parameter
        for (const ParameterSetting& setting : SettingsFor(point.name))
            EXPECT_TRUE(values.emplace(setting.index, setting.value).second) << "twice: " << setting.index;
        ASSERT_EQ(values.size(), 2U + bars);
        EXPECT_EQ(values[0], point.polyphony);
        EXPECT_EQ(values[1], point.sensitivity);
        for (int bar = 0; bar < bars; ++bar) {
            const int note = firstBarNote + bar;
            const float value = values[firstBar + bar];
            EXPECT_EQ(value > 0, note >= point.lowest && note <= point.highest) << "note " << note;
            EXPECT_LE(value, 1) << "note " << note;
        }
        // The open bars fall by so many dB an octave, and 20 dB are a factor of ten in amplitude.
        const int lowest = firstBar + point.lowest - firstBarNote;
        EXPECT_EQ(values[lowest], 1.0F);
        EXPECT_NEAR(20 * std::log10(values[lowest + 24]), -2.0 * point.slant, 1e-4);
    }
}

TEST(StartingPoints, AnUnknownNameIsToldTheKnownOnes) {
    try {
        SettingsFor("kazoo");
        FAIL() << "no error";
    } catch (const std::invalid_argument& reason) {
        for (const StartingPoint& point : StartingPoints())
            EXPECT_THAT(reason.what(), testing::HasSubstr(point.name));
    }
}
