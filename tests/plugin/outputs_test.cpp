// The parameters and the outputs behind them, met through a host's record, with a substitute for the MIDI
// devices, the message boxes and the editor.
#include <algorithm>
#include <filesystem>
#include <fstream>

#include "plugin/gui_plugin_ex.h"
#include "tests/delivery/midi_device_layer.h"
#include "tests/plugin/messages.h"
#include "tests/plugin/plugin_test.h"

namespace {

struct Told {
    std::int32_t index;
    float value;
    bool operator==(const Told&) const = default;
};

// An editor that writes down what it is told.
class FakeEditor : public IPluginEditor {
public:
    explicit FakeEditor(std::vector<Told>& list) : told(list) {}
    bool getRect(ERect**) override { return false; }
    bool open(void*) override { return false; }
    void close() override {}
    bool isOpen() const override { return false; }
    void idle() override {}
    void parameterChanged(std::int32_t index, float value) override { told.push_back({index, value}); }
    std::vector<Told>& told;
};

class Outputs : public DeviceTest {
protected:
    Outputs() {
        static std::vector<Told>* list;
        list = &told;
        auto* const object =
            new CORVAguivstEx(FakeHost::Callback, [](CORVAguivst&) -> std::unique_ptr<IPluginEditor> {
                return std::make_unique<FakeEditor>(*list);
            });
        effect = object;
        plug.emplace(object->getAeffect());
    }
    void Set(std::int32_t index, float value) { plug->effect->setParameter(plug->effect, index, value); }
    float Get(std::int32_t index) { return plug->effect->getParameter(plug->effect, index); }
    std::string Display(std::int32_t index) { return plug->Text(effGetParamDisplay, index); }
    std::vector<Told> TakenTold() { return std::exchange(told, {}); }
    // What the device heard, without the handle: "90 3c 64".
    std::vector<std::string> DeviceHeard() {
        std::vector<std::string> heard;
        for (const std::string& call : layer.Taken())
            if (call.rfind("send ", 0) == 0) heard.push_back(call.substr(call.find(' ', 5) + 1));
        return heard;
    }

    Messages messages;
    FakeHost host;
    std::vector<Told> told;
    CORVAguivstEx* effect = nullptr;
    std::optional<Plug> plug;
};

constexpr char openingFailed[] = "Error opening MIDI device. It may be already opened by the host.: ";

}  // namespace

TEST_F(Outputs, DisplaysSayWhatAValueStandsFor) {
    const struct {
        std::int32_t index;
        float value;
        const char* display;
    } rows[] = {
        {0, 1.0F / 3.0F, "low"},
        {0, 2.0F / 3.0F, "med"},
        {0, 1, "high"},
        {1, 0.875F, "-35 dB"},  // x -40
        {1, 0.999F, "-39 dB"},
        {1, -2, "80 dB"},   // nothing is clamped
        {2, 0.79F, "100"},  // x 127 = 100.33
        {2, 1.01F, "-128"},
        {3, 0.5F, "0.50"},
        {87, 0.5F, "63 Synth Brass 2"},
        {88, 0.02F, "(3)three"},
        {88, 0.05F, "(5) N/A"},
        {90, 1, "16"},
        {92, 0.26F, "Equa frame"},
        {92, 3, ""},
        {93, 0.51F, "true"},
        {94, 0.5F, "1.000 s"},
        {95, 0.5F, "false"},
    };
    for (const auto& row : rows) {
        Set(row.index, row.value);
        EXPECT_EQ(Display(row.index), row.display) << row.index << " at " << row.value;
    }
    char text[64];
    effect->getParameterValueDisplay(0.25F, 1, text);  // of 1 - value, where nothing calls it
    EXPECT_STREQ(text, "-30 dB");
}

TEST_F(Outputs, TheFirstThreeDriveDetectorAndRecorderFromTheStart) {
    EXPECT_EQ(effect->detector.relativeThreshold, 1.0F - 0.87F);
    EXPECT_EQ(effect->detector.floorDb, -35.0F);
    EXPECT_EQ(effect->noteRecorder.velocity, 100);
    char threshold[] = "0.75", decibels[] = "-20 dB", velocity[] = "63";
    EXPECT_EQ(plug->Call(effString2Parameter, 0, 0, threshold), 1);  // the inverse of what is shown
    EXPECT_EQ(plug->Call(effString2Parameter, 1, 0, decibels), 1);
    EXPECT_EQ(plug->Call(effString2Parameter, 2, 0, velocity), 1);
    EXPECT_EQ(effect->detector.relativeThreshold, 0.75F);
    EXPECT_EQ(effect->detector.floorDb, -20.0F);
    EXPECT_EQ(effect->noteRecorder.velocity, 63);
}

TEST_F(Outputs, AChannelAboveTheLastIsRefusedAndTold) {
    Set(90, 0.5F);
    TakenTold();
    Set(90, 1.01F);
    EXPECT_EQ(Get(90), 0.5F);
    EXPECT_EQ(TakenTold(), (std::vector<Told>{{90, 0.5F}, {90, 1.01F}}));
}

TEST_F(Outputs, ADeviceOpensOnceItIsEnabledAndHearsTheNotes) {
    Set(88, 0.01F);
    EXPECT_TRUE(layer.open.empty());
    Set(95, 1);
    Set(87, 0.5F);
    Set(89, 1);
    EXPECT_EQ(layer.open.size(), 1U);
    EXPECT_EQ(layer.open.begin()->second, 1U);
    EXPECT_EQ(DeviceHeard(), (std::vector<std::string>{"c0 3f 00"}));  // program int(0.5 x 127) as it joins
    ASSERT_TRUE(plug->Play(host, Sines({69}, 0.5), 512));
    EXPECT_EQ(DeviceHeard(), (std::vector<std::string>{"90 45 64"}));
    Set(89, 0);
    EXPECT_EQ(DeviceHeard(), (std::vector<std::string>{"80 45 00"}));
    EXPECT_TRUE(layer.open.empty());
    EXPECT_TRUE(messages.shown.empty());
}

TEST_F(Outputs, ARefusedDeviceFallsBackToTheOneThatWasOpen) {
    Set(89, 1);
    layer.refusedOpens[2] = 4;
    TakenTold();
    Set(88, 0.02F);
    EXPECT_EQ(Get(88), 0.0F);
    EXPECT_EQ(Get(89), 1.0F);
    EXPECT_EQ(messages.shown, (std::vector<std::string>{std::string(openingFailed) + "code 4"}));
    EXPECT_EQ(TakenTold(), (std::vector<Told>{{88, 0.0F}, {88, 0.02F}}));

    layer.refusedOpens[0] = 4;  // now the old one is gone, too: two boxes, and the switch goes off
    Set(88, 0.02F);
    EXPECT_EQ(Get(89), 0.0F);
    EXPECT_EQ(messages.shown.size(), 3U);
    EXPECT_EQ(TakenTold(), (std::vector<Told>{{89, 0.0F}, {88, 0.02F}}));

    Set(89, 1);  // nor can it be switched on
    EXPECT_EQ(Get(89), 0.0F);
    EXPECT_EQ(messages.shown.size(), 4U);
    EXPECT_EQ(TakenTold(), (std::vector<Told>{{89, 0.0F}, {89, 1.0F}}));
}

// The host output stops at a silent block, the others after three whole seconds of silence.
TEST_F(Outputs, DeviceAndRecordingOutliveAShortSilence) {
    Set(89, 1);
    effect->startRecording();
    const auto play = [&](double seconds) {
        plug->Play(host, Silence(static_cast<std::size_t>(seconds * 44100)), 441);
    };
    plug->Play(host, Sines({69}, 0.5), 441);
    play(2.5);
    EXPECT_TRUE(effect->stopped);
    EXPECT_FALSE(effect->outputsIdle);
    play(1.0);
    EXPECT_TRUE(effect->outputsIdle);
    plug->Play(host, Sines({69}, 0.5), 441);
    EXPECT_FALSE(effect->outputsIdle);
    effect->stopRecording();
    EXPECT_FALSE(effect->nothingRecorded());
    Set(89, 0);
}

TEST_F(Outputs, TheHostsEchoOfAnEditorsChangeIsNotAppliedAgain) {
    effect->setParameterFromEditor(90, 0.5F);
    EXPECT_EQ(host.Count(audioMasterAutomate), 1);
    EXPECT_EQ(host.lastIndex, 90);
    EXPECT_EQ(host.lastOpt, 0.5F);
    EXPECT_EQ(Get(90), 0.5F);
    EXPECT_TRUE(TakenTold().empty());  // the editor knows
    Set(200, 1);                       // no parameter: nothing, but the editor hears of it
    EXPECT_EQ(TakenTold(), (std::vector<Told>{{200, 1.0F}}));
}

TEST_F(Outputs, ChordsAreToldOnlyWhileEnabled) {
    plug->Play(host, Sines({48, 52, 55}, 1.0), 512);
    EXPECT_TRUE(TakenTold().empty());
    EXPECT_EQ(effect->currentChordText(), "C");
    Set(93, 1);
    TakenTold();
    plug->Play(host, Sines({48, 52, 55}, 0.5), 512);
    const std::vector<Told> heard = TakenTold();
    EXPECT_GE(heard.size(), 4U);  // ten a second
    for (const Told& one : heard) EXPECT_EQ(one, (Told{98, 0.0F}));
    plug->Call(effMainsChanged, 0, 0);
    EXPECT_EQ(effect->currentChordText(), "");
}

TEST_F(Outputs, ARecordingIsSavedAsAMidiFile) {
    EXPECT_TRUE(effect->nothingRecorded());
    effect->startRecording();
    plug->Play(host, Sines({69}, 1.0), 512);
    effect->stopRecording();
    EXPECT_FALSE(effect->nothingRecorded());
    const std::string path = testing::TempDir() + "orva_take.mid";
    ASSERT_TRUE(effect->saveRecording(path));
    std::ifstream file(path, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    EXPECT_EQ(bytes.substr(0, 4), "MThd");
    EXPECT_NE(bytes.find("Created with ORVA Audio To MIDI VST"), std::string::npos);
    EXPECT_NE(bytes.find("\x90\x45\x64"), std::string::npos);
    std::filesystem::remove(path);
}

TEST_F(Outputs, LevelsShowTheLoudestNearTheTopAndNotesAtIt) {
    plug->Play(host, Sines({69}, 1.0), 512);
    std::vector<unsigned char> levels;
    for (int tick = 0; tick < 200; ++tick)
        effect->buildLevels(levels);  // the average has settled: 0.93^200 < 1e-6
    ASSERT_EQ(levels.size(), 84U);
    EXPECT_EQ(levels[45], 255);  // MIDI 69 sounds
    EXPECT_EQ(std::count(levels.begin(), levels.end(), 255), 1);
}
