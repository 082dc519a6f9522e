#include <cfloat>
#include <limits>

#include "plugin/parameter_table.h"
#include "tests/plugin/plugin_test.h"

namespace {

class Parameters : public PluginTest {
protected:
    void Set(std::int32_t index, float value) { plug->effect->setParameter(plug->effect, index, value); }
    float Get(std::int32_t index) { return plug->effect->getParameter(plug->effect, index); }
    std::string Display(std::int32_t index, float value) {
        Set(index, value);
        return plug->Text(effGetParamDisplay, index);
    }
    bool Type(std::int32_t index, const char* text) {
        return plug->Call(effString2Parameter, index, 0, const_cast<char*>(text)) == 1;
    }
};

constexpr float third = 1.0F / 3.0F, twoThirds = 2.0F / 3.0F;
float Above(float value) {
    return std::nextafter(value, 2.0F);
}

TEST_F(Parameters, TheTableOfAll96) {
    const char* const pitches[] = {"C", "C#", "D", "D#", "E", "F", "F#", "G", "G#", "A", "B", "H"};
    struct Row {
        std::string name, label;
        float initial;
    };
    std::vector<Row> rows = {{"Polyphony", "Polyphony", 0.87F},
                             {"Sensitivity", "Sensitivity", 0.875F},
                             {"Velocity", "MIDI Velocity", 0.79F}};
    for (int i = 3; i <= 86; ++i) {
        const std::string name =
            std::string("Equalizer bar ") + pitches[(i - 3) % 12] + " " + std::to_string((i + 21) / 12);
        rows.push_back({name, name, 1.0F});
    }
    EXPECT_EQ(rows[3].name, "Equalizer bar C 2");
    EXPECT_EQ(rows[86].name, "Equalizer bar H 8");
    for (const char* name :
         {"MIDI Instrument", "MIDI Out Device", "MIDI Out Enabled", "MIDI Channel", "Output to Host Enabled",
          "Active Page", "Chords Enabled", "Chords Delay", "Send Program Change"})
        rows.push_back({name, name, std::string(name) == "Output to Host Enabled" ? 1.0F : 0.0F});
    ASSERT_EQ(rows.size(), 96U);
    for (std::int32_t i = 0; i < 96; ++i) {
        const Row& row = rows[static_cast<std::size_t>(i)];
        EXPECT_EQ(plug->Text(effGetParamName, i), row.name) << i;
        EXPECT_EQ(plug->Text(effGetParamLabel, i), row.label) << i;
        EXPECT_EQ(Get(i), row.initial) << i;
        EXPECT_EQ(plug->Call(effCanBeAutomated, i), i < 87) << i;
    }
}

TEST_F(Parameters, OutsideTheTableThereIsNoNameAndNoValue) {
    for (const std::int32_t index :
         {-1, 96, 128, std::numeric_limits<std::int32_t>::max(), std::numeric_limits<std::int32_t>::min()}) {
        Set(index, 0.5F);
        EXPECT_EQ(Get(index), 0.0F);
        EXPECT_EQ(plug->Text(effGetParamName, index), "No name");
        EXPECT_EQ(plug->Text(effGetParamDisplay, index), "0.00");
        EXPECT_FALSE(Type(index, "0.5"));
    }
}

TEST_F(Parameters, WhatIsSetIsReadBack) {
    for (std::int32_t i = 0; i < 96; ++i) {
        if (i == paramDeviceEnabled) continue;  // needs a device to stay on
        const bool isSwitch = i == paramOutputToHost || i == paramChordsEnabled;
        for (const float value : {0.25F, Above(0.3F), 0.0F, 1.0F}) {
            if (isSwitch && value != 0 && value != 1) continue;
            Set(i, value);
            EXPECT_EQ(Get(i), value) << i;
        }
    }
}

TEST_F(Parameters, PolyphonyDisplaysInThirds) {
    EXPECT_EQ(Display(0, 0), "low");
    EXPECT_EQ(Display(0, third), "low");
    EXPECT_EQ(Display(0, Above(third)), "med");
    EXPECT_EQ(Display(0, twoThirds), "med");
    EXPECT_EQ(Display(0, Above(twoThirds)), "high");
    EXPECT_EQ(Display(0, 1), "high");
}

TEST_F(Parameters, SensitivityDisplaysInDecibelsCutTowardsZero) {
    EXPECT_EQ(plug->Text(effGetParamDisplay, 1), "-35 dB");  // 0.875 x -40
    EXPECT_EQ(Display(1, 0), "0 dB");
    EXPECT_EQ(Display(1, 0.0249F), "0 dB");  // -0.996
    EXPECT_EQ(Display(1, 0.999F), "-39 dB");
    EXPECT_EQ(Display(1, 1), "-40 dB");
    EXPECT_EQ(Display(1, -2), "80 dB");  // nothing is clamped
    char text[64];
    Object().CORVA_vst::getParameterValueDisplay(0.25F, 1, text);  // of 1 - value, where nothing calls it
    EXPECT_STREQ(text, "-30 dB");
}

TEST_F(Parameters, VelocityDisplaysAsASignedByte) {
    EXPECT_EQ(plug->Text(effGetParamDisplay, 2), "100");  // 0.79 x 127 = 100.33
    EXPECT_EQ(Display(2, 1), "127");
    EXPECT_EQ(Display(2, 0), "0");
    EXPECT_EQ(Display(2, 1.01F), "-128");  // 128.27
    EXPECT_EQ(Display(2, 2), "-2");        // 254
    EXPECT_EQ(Object().noteRecorder.velocity, -2);
    EXPECT_EQ(Display(2, std::nanf("")), "0");  // the low byte of 0x80000000
}

TEST_F(Parameters, TheFirstThreeDriveDetectorAndRecorderFromTheStart) {
    const CORVA_vst& object = Object();
    EXPECT_EQ(object.detector.relativeThreshold, 1.0F - 0.87F);
    EXPECT_EQ(object.detector.floorDb, -35.0F);
    EXPECT_EQ(object.noteRecorder.velocity, 100);
    Set(0, 0.25F);
    Set(1, 0.5F);
    Set(2, 0.5F);
    EXPECT_EQ(object.detector.relativeThreshold, 0.75F);
    EXPECT_EQ(object.detector.floorDb, -20.0F);
    EXPECT_EQ(object.noteRecorder.velocity, 63);  // 63.5
}

TEST_F(Parameters, OnlyTheFirstThreeAskTheHostToReadAgain) {
    const int before = host.Count(audioMasterUpdateDisplay);
    for (std::int32_t i = 0; i < 96; ++i)
        if (i != paramDeviceEnabled) Set(i, 0);
    EXPECT_EQ(host.Count(audioMasterUpdateDisplay), before + 3);
    Type(0, "0.5");
    EXPECT_EQ(host.Count(audioMasterUpdateDisplay), before + 4);
    Type(0, "5");
    EXPECT_EQ(host.Count(audioMasterUpdateDisplay), before + 4);
}

TEST_F(Parameters, TypedTextsOfTheFirstThree) {
    struct Row {
        std::int32_t index;
        const char* text;
        bool accepted;
        float value;
    };
    const Row rows[] = {
        {0, "0.13", true, 0.87F},  // the typed figure is the threshold, the inverse of the display
        {0, "0", true, 1.0F},
        {0, "1", true, 0.0F},
        {0, "  0.5 and more", true, 0.5F},
        {0, "1.0001", false, 0},
        {0, "-0.0001", false, 0},
        {0, "", false, 0},
        {0, "low", false, 0},
        {0, "nan", false, 0},
        {1, "-35", true, 0.875F},
        {1, "-40 dB", true, 1.0F},
        {1, "0", true, 0.0F},
        {1, "-40.01", false, 0},
        {1, "0.01", false, 0},
        {1, "dB", false, 0},
        {2, "127", true, 127.0F / 127 + 0.007F},
        {2, "257", true, 1.0F / 127 + 0.007F},  // of which the low byte is 1
        {2, "-255", true, 1.0F / 127 + 0.007F},
        {2, "128", false, 0},  // -128
        {2, "255", false, 0},
        {2, "256", false, 0},  // 0
        {2, "0", false, 0},
        {2, "-1", false, 0},
        {2, "", false, 0},
        {3, "0.5", false, 0},
        {95, "1", false, 0},
    };
    for (const Row& row : rows) {
        const float before = Get(row.index);
        EXPECT_EQ(Type(row.index, row.text), row.accepted) << row.index << " " << row.text;
        EXPECT_NEAR(Get(row.index), row.accepted ? row.value : before, 1e-6) << row.index << " " << row.text;
    }
    for (std::int32_t index = 0; index < 4; ++index) EXPECT_FALSE(Type(index, nullptr));
    for (int velocity = 1; velocity <= 127; ++velocity) {
        EXPECT_TRUE(Type(2, std::to_string(velocity).c_str()));
        EXPECT_EQ(Object().noteRecorder.velocity, velocity);
    }
}

TEST_F(Parameters, TextsStayWithinTheirRoomWhateverTheValue) {
    for (const float value : {FLT_MAX, -FLT_MAX, 1e30F, std::nanf(""), HUGE_VALF, -HUGE_VALF})
        for (std::int32_t i = 0; i < 96; ++i) {
            if (i >= paramDevice && i <= paramChordsEnabled) continue;
            Set(i, value);
            EXPECT_NE(plug->Text(effGetParamDisplay, i), "written past its room") << i << " " << value;
            EXPECT_LE(plug->Text(effGetParamName, i).size(), 22U);
            EXPECT_LE(plug->Text(effGetParamLabel, i).size(), 22U);
        }
}

TEST_F(Parameters, TheProgramsNameKeeps31BytesAndNeverHalfACharacter) {
    const auto name = [&](std::vector<char> text) {
        plug->Call(effSetProgramName, 0, 0, text.data());
        char field[64];
        std::memset(field, '\x7F', sizeof field);
        plug->Call(effGetProgramName, 0, 0, field);
        for (int i = 32; i < 64; ++i) EXPECT_EQ(field[i], '\x7F');
        return std::string(field, strnlen(field, 32));
    };
    const auto bytes = [](const std::string& text) {
        return std::vector<char>(text.c_str(), text.c_str() + text.size() + 1);
    };
    EXPECT_EQ(plug->Text(effGetProgramName), "Default");
    EXPECT_EQ(name(bytes("")), "");
    EXPECT_EQ(name(bytes("Flute")), "Flute");
    EXPECT_EQ(name(bytes(std::string(31, 'a'))), std::string(31, 'a'));
    EXPECT_EQ(name(bytes(std::string(32, 'b'))), std::string(31, 'b'));
    EXPECT_EQ(name(bytes(std::string(65536, 'c'))), std::string(31, 'c'));
    EXPECT_EQ(name(std::vector<char>(32, 'd')), std::string(31, 'd'));  // no end within the field
    EXPECT_EQ(name(bytes(std::string(30, 'e') + "\xC3\xA9!")), std::string(30, 'e'));
    plug->Call(effSetProgramName, 0, 0, nullptr);
    EXPECT_EQ(plug->Text(effGetProgramName), std::string(30, 'e'));
}

}  // namespace
