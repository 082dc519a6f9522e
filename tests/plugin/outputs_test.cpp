// Parameters 3 to 95 and the outputs behind them, met through a host's record, with a substitute for the MIDI
// devices, the message boxes and the editor.
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>
#include <random>

#include "base/truncate.h"
#include "plugin/gui_plugin_ex.h"
#include "plugin/parameter_display.h"
#include "tests/delivery/midi_device_layer.h"
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

class Messages : public IMessageBox {
public:
    Messages() { SubstituteSystemMessageBox(this); }
    ~Messages() override { SubstituteSystemMessageBox(nullptr); }
    void Show(const std::string& text, const std::string& caption) override {
        shown.push_back(caption + ": " + text);
    }
    std::vector<std::string> shown;
};

class Outputs : public testing::Test {
protected:
    Outputs() {
        SubstituteMidiOut(&layer);
        static std::vector<Told>* list;
        list = &told;
        auto* const object =
            new CORVAguivstEx(FakeHost::Callback, [](CORVAguivst&) -> std::unique_ptr<IPluginEditor> {
                return std::make_unique<FakeEditor>(*list);
            });
        effect = object;
        plug.emplace(object->getAeffect());
    }
    ~Outputs() override {
        plug.reset();
        EXPECT_TRUE(layer.open.empty()) << "a device was left open";
        SubstituteMidiOut(nullptr);
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

    FakeLayer layer;
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
        {3, 0.5F, "0.50"},
        {86, 2, "2.00"},
        {87, 0, "0 Acoustic Grand Piano"},
        {87, 1, "127 Gunshot"},
        {87, 1.1F, ""},
        {88, 0, "(1)one"},
        {88, 0.02F, "(3)three"},
        {88, 0.05F, "(5) N/A"},
        {89, 0.5F, "false"},
        {90, 0, "1"},
        {90, 1, "16"},
        {91, 0, "0.00"},
        {92, 0, "Main frame"},
        {92, 0.26F, "Equa frame"},
        {92, 1, "About frame"},
        {92, 3, ""},
        {93, 0.51F, "true"},
        {94, 0.5F, "1.000 s"},
        {95, 0.5F, "false"},
        {95, 1, "true"},
    };
    for (const auto& row : rows) {
        Set(row.index, row.value);
        EXPECT_EQ(Display(row.index), row.display) << row.index << " at " << row.value;
    }
}

TEST_F(Outputs, SwitchesReadBackAsExactlyOffOrOn) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    for (const std::int32_t index : {89, 91, 93})
        for (const auto& [value, expected] :
             {std::pair{0.5F, 0.0F}, {0.500001F, 1.0F}, {1e30F, 1.0F}, {nan, 0.0F}, {-1.0F, 0.0F}}) {
            Set(index, value);
            EXPECT_EQ(Get(index), expected) << index << " at " << value;
        }
    Set(89, 0);
}

TEST_F(Outputs, ChannelsAboveTheLastAreRefusedAndTold) {
    Set(90, 0.5F);  // int(0.5 x 15.99) = 7
    TakenTold();
    Set(90, 1.01F);
    EXPECT_EQ(Get(90), 0.5F);
    EXPECT_EQ(effect->noteRecorder.channel, 7);
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

TEST_F(Outputs, AnyOrderOfRestoringGivesTheSameEnd) {
    std::vector<std::pair<std::int32_t, float>> saved;
    std::mt19937 random(1);
    for (std::int32_t index = 0; index < 96; ++index)
        saved.emplace_back(index, static_cast<float>(random() % 100) / 100);
    saved[88].second = 0.02F;
    saved[89].second = saved[91].second = saved[93].second = 1;
    saved[92].second = 4;
    for (int run = 0; run < 20; ++run) {
        if (run == 1) std::reverse(saved.begin(), saved.end());
        if (run > 1) std::shuffle(saved.begin(), saved.end(), random);
        Set(89, 0);
        for (const auto& [index, value] : saved) Set(index, value);
        for (const auto& [index, value] : saved) EXPECT_EQ(Get(index), value) << index << ", run " << run;
        ASSERT_EQ(layer.open.size(), 1U);
        EXPECT_EQ(layer.open.begin()->second, 2U);
    }
    EXPECT_TRUE(messages.shown.empty());
    Set(89, 0);
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
    plug->Play(host, Sines({60, 64, 67}, 1.0), 512);
    effect->stopRecording();
    EXPECT_FALSE(effect->nothingRecorded());
    const std::string path = testing::TempDir() + "orva_take.mid";
    ASSERT_TRUE(effect->saveRecording(path));
    std::ifstream file(path, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    EXPECT_EQ(bytes.substr(0, 4), "MThd");
    EXPECT_NE(bytes.find("Created with ORVA Audio To MIDI VST"), std::string::npos);
    for (const char note : {'\x3C', '\x40', '\x43'})
        EXPECT_NE(bytes.find(std::string("\x90") + note), std::string::npos);
    std::filesystem::remove(path);
    EXPECT_FALSE(effect->saveRecording("/nowhere/take.mid"));
    EXPECT_FALSE(effect->saveRecording("/dev/full"));
}

TEST_F(Outputs, LevelsShowTheLoudestNearTheTopAndNotesAtIt) {
    plug->Play(host, Sines({69}, 1.0), 512);
    std::vector<unsigned char> levels;
    for (int tick = 0; tick < 200; ++tick)
        effect->buildLevels(levels);  // the average has settled: 0.93^200 < 1e-6
    ASSERT_EQ(levels.size(), 84U);
    EXPECT_EQ(levels[45], 255);  // MIDI 69 sounds
    EXPECT_EQ(std::count(levels.begin(), levels.end(), 255), 1);
    plug->Play(host, Silence(512), 512);
    effect->buildLevels(levels);
    EXPECT_LE(*std::max_element(levels.begin(), levels.end()), 255);
}

// Any float in any parameter: the answers stay as stated, and nothing is undefined (the sanitizers watch).
TEST_F(Outputs, AnyFloatIsTaken) {
    const float values[] = {0,
                            -0.0F,
                            1e-45F,
                            -1,
                            0.5F,
                            1,
                            1.5F,
                            5,
                            1e9F,
                            1e30F,
                            -1e30F,
                            std::numeric_limits<float>::max(),
                            std::numeric_limits<float>::infinity(),
                            -std::numeric_limits<float>::infinity(),
                            std::numeric_limits<float>::quiet_NaN()};
    const std::vector<float> audio = Sines({69}, 0.02);
    for (std::int32_t index = -2; index < 100; ++index)
        for (const float value : values) {
            Set(index, value);
            for (const auto opcode : {effGetParamDisplay, effGetParamName, effGetParamLabel})
                plug->Text(opcode, index);
            if (index == 88 || index == 89 || (index == 90 && ChannelOf(value) >= 16))
                continue;  // may fall back
            const bool outside = index < 0 || index >= 96;
            const bool isSwitch = index == 91 || index == 93;
            const float expected = outside ? 0.0F : isSwitch ? (value > 0.5F ? 1.0F : 0.0F) : value;
            const float read = Get(index);
            EXPECT_TRUE(read == expected || (std::isnan(read) && std::isnan(expected)))
                << index << " at " << value;
        }
    EXPECT_TRUE(plug->Play(host, audio, 64));
    Set(89, 0);
}
