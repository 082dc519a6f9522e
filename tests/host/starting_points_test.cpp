#include "tools/host/starting_points.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <set>
#include <stdexcept>

namespace {

constexpr int firstBar = 3, bars = 84, firstBarNote = 24;  // bar 0 is C1, MIDI note 24

std::map<int, float> ByIndex(const std::string& name) {
    std::map<int, float> values;
    for (const ParameterSetting& setting : SettingsFor(name))
        EXPECT_TRUE(values.emplace(setting.index, setting.value).second) << "twice: " << setting.index;
    return values;
}

}  // namespace

TEST(StartingPoints, EachSetsTwoThresholdsAndShutsTheBarsOutsideItsInstrument) {
    std::set<std::string> names;
    for (const StartingPoint& point : StartingPoints()) {
        SCOPED_TRACE(point.name);
        EXPECT_TRUE(names.insert(point.name).second);
        std::map<int, float> values = ByIndex(point.name);
        ASSERT_EQ(values.size(), 2U + bars);
        EXPECT_EQ(values[0], point.polyphony);
        EXPECT_EQ(values[1], point.sensitivity);
        for (int bar = 0; bar < bars; ++bar) {
            const int note = firstBarNote + bar;
            const bool open = note >= point.lowest && note <= point.highest;
            EXPECT_EQ(values[firstBar + bar] > 0, open) << "note " << note;
        }
        for (const auto& [index, value] : values)
            EXPECT_THAT(value, testing::AllOf(testing::Ge(0), testing::Le(1)));
    }
}

TEST(StartingPoints, TheOpenBarsFallBySoManyDbAnOctave) {
    for (const StartingPoint& point : StartingPoints()) {
        std::map<int, float> values = ByIndex(point.name);
        const int lowest = firstBar + point.lowest - firstBarNote;
        EXPECT_EQ(values[lowest], 1.0F) << point.name;
        // Two octaves up; 20 dB are a factor of ten in amplitude.
        EXPECT_NEAR(20 * std::log10(values[lowest + 24]), -2.0 * point.slant, 1e-4) << point.name;
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
