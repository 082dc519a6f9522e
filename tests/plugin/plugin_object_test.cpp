// What a host gets from one instance: audio and events, answers, and the parameters with the outputs behind
// them. Orders of calls at random are walked through elsewhere.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>

#include "module/plugin_entry.h"
#include "plugin/gui_plugin_ex.h"
#include "plugin/mem_log.h"
#include "tests/support/devices.h"
#include "tests/support/host.h"
#include "tests/support/messages.h"
#include "tests/support/music.h"

namespace {

std::string ReadFileOnce(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(file), {}};
    std::remove(path.c_str());
    return bytes;
}

// What an editor was notified of.
struct Shown {
    std::int32_t index;
    float value;
    bool operator==(const Shown&) const = default;
};
std::vector<Shown> shown;

struct FakeEditor : IPluginEditor {
    bool getRect(ERect**) override { return false; }
    bool open(void*) override { return false; }
    void close() override {}
    bool isOpen() const override { return false; }
    void idle() override {}
    void parameterChanged(std::int32_t index, float value) override { shown.push_back({index, value}); }
};

class PluginObject : public DeviceTest {
protected:
    PluginObject() {
        host.Open([](audioMasterCallback callback) {
            return (new CORVAguivstEx(callback,
                                      [](CORVAguivst&) -> std::unique_ptr<IPluginEditor> {
                                          return std::make_unique<FakeEditor>();
                                      }))
                ->getAeffect();
        });
        effect = &host.Object<CORVAguivstEx>();
        host.TakenEvents();
        shown.clear();
    }
    ~PluginObject() override { host.Close(); }
    void Set(std::int32_t index, float value) { host.Set(index, value); }
    std::vector<Shown> TakenShown() { return std::exchange(shown, {}); }
    // What the device heard, without the handle: "90 3c 64".
    std::vector<std::string> DeviceHeard() {
        std::vector<std::string> heard;
        for (const std::string& call : layer.Taken())
            if (call.rfind("send ", 0) == 0) heard.push_back(call.substr(call.find(' ', 5) + 1));
        return heard;
    }
    using Lines = std::vector<std::string>;

    Messages messages;
    Host host;
    CORVAguivstEx* effect = nullptr;
    const Audio tone = Tones({69, 76}, 0.3), a440 = Tones({69}, 0.5);
};

}  // namespace

// --- audio and events ---

// 30000 a unit, cut towards zero. The last sample is too small to be a normal number: nothing to the
// detector, but not flushed from the sum that the host hears, whose buffers may overlap.
TEST_F(PluginObject, PassesTheAudioAndHandsTheSameSamplesOn) {
    std::vector<float> in = {0.5F, -0.25F, 1e-40F}, out = {0.125F, 0.5F, 2e-40F}, both = {1, 2, 3, 4};
    std::vector<double> wideIn = {0.5, -0.25, 1e-310}, wideOut(3);
    host.Process(Way::accumulating, in.data(), out.data(), 3);
    EXPECT_EQ(out, (std::vector<float>{0.625F, 0.25F, 1e-40F + 2e-40F}));
    EXPECT_EQ(effect->samples, (std::vector<short>{15000, -7500, 0}));
    host.Process(Way::replacing, in.data(), out.data(), 3);
    EXPECT_EQ(out, in);
    host.Process(wideIn.data(), wideOut.data(), 3);
    EXPECT_EQ(wideOut, wideIn);
    EXPECT_EQ(effect->samples, (std::vector<short>{15000, -7500, 0}));
    host.Process(Way::accumulating, both.data(), both.data() + 1, 3);
    EXPECT_EQ(both, (std::vector<float>{1, 2 + 1, 3 + 2, 4 + 3}));
}

// The detector forgets at either end, so a tone is the first tone once more, later.
TEST_F(PluginObject, SignalStartsDetectionAndASilentBlockOrASuspendEndsTheNotes) {
    EXPECT_TRUE(effect->stopped);
    host.Play(tone);
    EXPECT_EQ(host.Sounding(), 2);
    const std::vector<Host::Event> first = host.TakenEvents();
    for (const bool suspends : {false, true}) {
        if (suspends)
            host.Call(effMainsChanged, 0, 0);
        else
            host.Play(Silence(64));
        EXPECT_TRUE(effect->stopped);
        EXPECT_EQ(host.Sounding(), -2);
        EXPECT_EQ(host.TakenEvents().size(), 2U);  // note by note, and no other message
        host.Call(effMainsChanged, 0, 1);          // resume alone starts nothing
        EXPECT_TRUE(effect->stopped);
        const std::int64_t begin = host.clock;
        host.Play(tone);
        EXPECT_EQ(host.TakenEvents(), Later(first, begin));
    }
}

TEST_F(PluginObject, AHostMayChangeTheRateOrSuspendFromInsideAnEvent) {
    host.Play(tone);
    const std::vector<Host::Event> first = host.TakenEvents();
    for (const float rate : {96000.0F, 8000.0F, 1.0F, 0.0F}) {
        host.Play(Silence(64));
        host.atNextEvent = [&] {
            if (rate > 0) host.Call(effSetSampleRate, 0, 0, nullptr, rate);
            if (rate == 0) host.Call(effMainsChanged, 0, 0);
        };
        host.Play(tone);
        EXPECT_FALSE(host.atNextEvent);  // it was called
        host.Call(effSetSampleRate, 0, 0, nullptr, 44100);
        host.Play(Silence(64));
        host.TakenEvents();
        const std::int64_t begin = host.clock;
        host.Play(tone);
        EXPECT_EQ(host.TakenEvents(), Later(first, begin)) << "after " << rate;
    }
}

// The host output stops at a silent block, the others after three whole seconds of silence.
TEST_F(PluginObject, DeviceAndRecordingOutliveAShortSilence) {
    Set(paramDeviceEnabled, 1);
    effect->startRecording();
    host.Play(a440, 441);
    host.Play(Silence(110250), 441);  // 2.5 s
    EXPECT_TRUE(effect->stopped);
    EXPECT_FALSE(effect->outputsIdle);
    host.Play(Silence(44100), 441);
    EXPECT_TRUE(effect->outputsIdle);
    host.Play(a440, 441);
    EXPECT_FALSE(effect->outputsIdle);
    host.Call(effMainsChanged, 0, 0);
    EXPECT_TRUE(effect->outputsIdle);
    effect->stopRecording();
    EXPECT_FALSE(effect->nothingRecorded());
    Set(paramDeviceEnabled, 0);
}

// --- what the plug-in says to its host, and what it asks of it ---

// Whether the host is the one that needs dates inside the block is asked once per process. With the delay of
// the detection taken off, band 45 is dated 65.2 ms before the end of a frame: 40 + 38 x (1.11565 / 84) /
// 0.02 ms, in samples 2876.
class HostByVendor : public testing::TestWithParam<const char*> {};
INSTANTIATE_TEST_SUITE_P(Vendors, HostByVendor,
                         testing::Values("Ableton", "Ableton AG", "ableton", "Ablet", "", nullptr));
TEST_P(HostByVendor, GetsTheDatesThatItNeeds) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");  // a process of its own, in which nobody has asked yet
    const char* const vendor = GetParam();
    const bool isAbleton = vendor != nullptr && std::string_view(vendor) == "Ableton";
    EXPECT_EXIT(
        {
            Host host;
            host.vendor = vendor;
            host.Open(OpenPlugin);
            host.TakenEvents();
            host.Play(Tones({69}, 0.4), 441);
            const auto events = host.TakenEvents();
            const bool right = !events.empty() && events[0].data == std::string("\x90\x45\x64", 3) &&
                               (events[0].at + (isAbleton ? 0 : 2876)) % 441 == 0;
            _exit(right ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

// In blocks of one frame a note begins 441 - 2876 samples after the begin of its block, and the silence that
// ends it comes at the begin of one. The last three events are sent between blocks.
TEST(HostByProduct, OnlyTheKnownOnesGetEarlyEventsAtTheBlocksFirstSample) {
    const auto played = [](const char* product) {
        Host host;
        host.product = product;
        host.Open(OpenPlugin);
        host.TakenEvents();
        host.Play(Tones({69}, 0.4), 441);
        host.Play(Silence(441), 441);
        TVSTMIDIOut& out = *host.Object<CORVA_vst>().vstMidiOut;
        out.NoteOn(45), out.NoteOff(45), out.NoteOn(45);
        return host.TakenEvents();
    };
    const auto early = played("Maker's Studio");
    ASSERT_EQ(early.size(), 5U);
    EXPECT_EQ((early[0].at + 2876) % 441, 0);
    EXPECT_EQ(played("Ardour 2"), early);
    auto raised = early;
    raised[0].at += 2876 - 441;
    raised[1].at += 2876;
    for (std::size_t i = 2; i < 5; ++i) raised[i].at += 441 + 2876;  // the notes' clock rests in silence
    ++raised[3].at, ++raised[4].at;  // the end after its begin, and the next begin no earlier than it
    for (const char* const product : {"Ardour", "Carla"}) EXPECT_EQ(played(product), raised) << product;
}

TEST_F(PluginObject, IdentifiesItselfAndAsksAHostOfVersionZeroNothingElse) {
    EXPECT_EQ(host.effect->version, 1);
    EXPECT_EQ(host.effect->numPrograms, 1);
    EXPECT_EQ(host.Text(effGetEffectName), "ORVA Audio To MIDI");
    EXPECT_EQ(host.Text(effGetProductString), "ORVA Audio To MIDI");
    EXPECT_EQ(host.Text(effGetVendorString), "ORVASOFT");
    EXPECT_EQ(host.Call(effGetVendorVersion), 5632);
    EXPECT_EQ(host.Call(effGetPlugCategory), kPlugCategAnalysis);
    EXPECT_EQ(host.Call(effGetVstVersion), 2400);
    Host old;
    old.version = 0;
    EXPECT_FALSE(old.Open(OpenPlugin));
    EXPECT_EQ(old.calls, 1);
}

TEST_F(PluginObject, OpeningLogsTheHostsFactsEachTime) {
    std::string facts =
        "\ngetMasterVersion: 2400\ngetHostVendorString: Maker\ngetHostVendorVersion: 1234\n"
        "getHostProductString: [Unknown]\n\n";
    for (std::string name :
         {"sendVstEvents", "sendVstMidiEvent", "sendVstTimeInfo", "receiveVstEvents", "receiveVstMidiEvent",
          "receiveVstTimeInfo", "reportConnectionChanges", "acceptIOChanges", "sizeWindow", "asyncProcessing",
          "offline", "supplyIdle", "supportShell", "openFileSelector", "editFile", "closeFileSelector",
          "startStopProcess", "shellCategory", "sendVstMidiEventFlagIsRealtime"}) {
        const std::string answer = name == "sizeWindow" ? "1" : name == "offline" ? "-1" : "0";
        name.resize(31, ' ');
        facts += name + ": " + answer + "\n";
    }
    const std::string before = getMemLog().text();
    host.Call(effOpen), host.Call(effOpen);
    EXPECT_EQ(getMemLog().text(), before + facts + "\n" + facts + "\n");
}

TEST(Log, HoldsEachBlockInItsPlaceAndSavesItOverWhatIsThere) {
    MemLog log;
    for (const char* const block : {"a\n", "a\n", "b\n", "a\n", "", "b\n", "b\n"}) log.append(block);
    EXPECT_EQ(log.text(), "a\na\nb\na\nb\nb\n");
    const std::string path = testing::TempDir() + "orva_log_" + std::to_string(getpid());
    std::ofstream(path) << "a line that is longer than the next text\n";
    EXPECT_TRUE(log.saveToFile(path));
    EXPECT_EQ(ReadFileOnce(path), log.text());
}

// --- parameters and the outputs behind them ---

TEST_F(PluginObject, DisplaysSayWhatAValueStandsFor) {
    // clang-format off
    const struct { std::int32_t index; float value; const char* display; } rows[] = {
        {0, 1.0F / 3.0F, "low"}, {0, 2.0F / 3.0F, "med"}, {0, 1, "high"},
        {1, 0.875F, "-35 dB"}, {1, 0.999F, "-39 dB"}, {1, -2, "80 dB"},  // x -40; nothing is clamped
        {2, 0.79F, "100"}, {2, 1.01F, "-128"},                           // x 127 = 100.33
        {3, 0.5F, "0.50"}, {87, 0.5F, "63 Synth Brass 2"}, {88, 0.02F, "(3)three"}, {88, 0.05F, "(5) N/A"},
        {90, 1, "16"}, {92, 0.26F, "Equa frame"}, {92, 3, ""}, {93, 0.51F, "true"}, {94, 0.5F, "1.000 s"},
        {95, 0.5F, "false"}};
    // clang-format on
    for (const auto& row : rows) {
        Set(row.index, row.value);
        EXPECT_EQ(host.Text(effGetParamDisplay, row.index), row.display) << row.index << " at " << row.value;
    }
    char text[64];
    effect->getParameterValueDisplay(0.25F, 1, text);  // of 1 - value, where nothing calls it
    EXPECT_STREQ(text, "-30 dB");
}

TEST_F(PluginObject, TheFirstThreeDriveDetectorAndRecorderFromTheStartAndAsTyped) {
    EXPECT_EQ(effect->detector.relativeThreshold, 1.0F - 0.87F);
    EXPECT_EQ(effect->detector.floorDb, -35.0F);
    EXPECT_EQ(effect->noteRecorder.velocity, 100);
    char threshold[] = "0.75", decibels[] = "-20 dB", velocity[] = "63";
    EXPECT_EQ(host.Call(effString2Parameter, 0, 0, threshold), 1);  // the inverse of what is shown
    EXPECT_EQ(host.Call(effString2Parameter, 1, 0, decibels), 1);
    EXPECT_EQ(host.Call(effString2Parameter, 2, 0, velocity), 1);
    EXPECT_EQ(effect->detector.relativeThreshold, 0.75F);
    EXPECT_EQ(effect->detector.floorDb, -20.0F);
    EXPECT_EQ(effect->noteRecorder.velocity, 63);
}

TEST_F(PluginObject, TheEditorHearsOfAHostsChangesAndNotOfItsOwn) {
    Set(paramChannel, 0.5F);
    Set(paramChannel, 1.01F);  // channel 17: the menu goes back
    EXPECT_EQ(host.Get(paramChannel), 0.5F);
    EXPECT_EQ(TakenShown(), (std::vector<Shown>{{90, 0.5F}, {90, 0.5F}, {90, 1.01F}}));
    effect->setParameterFromEditor(paramChannel, 0.25F);
    EXPECT_EQ(host.Count(audioMasterAutomate), 1);
    EXPECT_EQ(host.last.index, 90);
    EXPECT_EQ(host.last.opt, 0.25F);
    EXPECT_EQ(host.Get(paramChannel), 0.25F);
    EXPECT_TRUE(TakenShown().empty());
    Set(200, 1);  // no parameter: nothing, but the editor hears of it
    EXPECT_EQ(TakenShown(), (std::vector<Shown>{{200, 1.0F}}));
}

TEST_F(PluginObject, ADeviceOpensOnceItIsEnabledAndHearsTheNotes) {
    Set(paramDevice, 0.01F);
    Set(paramSendProgramChange, 1);
    Set(paramInstrument, 0.5F);
    EXPECT_EQ(layer.OpenCount(), 0);
    Set(paramDeviceEnabled, 1);
    EXPECT_EQ(layer.Taken(), (Lines{"open 1", "send 1 c0 3f 00"}));  // int(0.5 x 127), as it joins
    host.Play(a440);
    EXPECT_EQ(DeviceHeard(), Lines{"90 45 64"});
    Set(paramDeviceEnabled, 0);
    EXPECT_EQ(DeviceHeard(), Lines{"80 45 00"});
    EXPECT_EQ(layer.OpenCount(), 0);
    EXPECT_TRUE(messages.shown.empty());
}

TEST_F(PluginObject, ARefusedDeviceFallsBackToTheOneThatWasOpen) {
    const std::string failure = "Error opening MIDI device. It may be already opened by the host.: code 4";
    Set(paramDeviceEnabled, 1);
    layer.refusedOpens[2] = 4;
    TakenShown();
    Set(paramDevice, 0.02F);
    EXPECT_EQ(host.Get(paramDevice), 0.0F);
    EXPECT_EQ(host.Get(paramDeviceEnabled), 1.0F);
    EXPECT_EQ(messages.Taken(), Lines{failure});
    EXPECT_EQ(TakenShown(), (std::vector<Shown>{{88, 0.0F}, {88, 0.02F}}));
    layer.refusedOpens[0] = 4;  // now the old one is gone, too: two boxes, and the switch goes off
    Set(paramDevice, 0.02F);
    EXPECT_EQ(host.Get(paramDeviceEnabled), 0.0F);
    EXPECT_EQ(messages.Taken().size(), 2U);
    EXPECT_EQ(TakenShown(), (std::vector<Shown>{{89, 0.0F}, {88, 0.02F}}));
    Set(paramDeviceEnabled, 1);  // nor can it be switched on
    EXPECT_EQ(host.Get(paramDeviceEnabled), 0.0F);
    EXPECT_EQ(TakenShown(), (std::vector<Shown>{{89, 0.0F}, {89, 1.0F}}));
}

TEST_F(PluginObject, ChordsAreReportedOnlyWhileEnabled) {
    host.Play(Tones({48, 52, 55}, 1.0));
    EXPECT_TRUE(TakenShown().empty());
    EXPECT_EQ(effect->currentChordText(), "C");
    Set(paramChordsEnabled, 1);
    TakenShown();
    host.Play(Tones({48, 52, 55}, 0.5));
    const std::vector<Shown> heard = TakenShown();
    EXPECT_GE(heard.size(), 4U);  // ten a second
    for (const Shown& one : heard) EXPECT_EQ(one, (Shown{98, 0.0F}));
    host.Play(Silence(22050), 441);  // judged through silence, too
    EXPECT_EQ(effect->currentChordText(), "");
}

TEST_F(PluginObject, ARecordingIsSavedAsAMidiFile) {
    EXPECT_TRUE(effect->nothingRecorded());
    effect->startRecording();
    host.Play(a440);
    effect->stopRecording();
    const std::string path = testing::TempDir() + "orva_take_" + std::to_string(getpid());
    ASSERT_TRUE(effect->saveRecording(path));
    const std::string bytes = ReadFileOnce(path);
    EXPECT_EQ(bytes.substr(0, 4), "MThd");
    EXPECT_NE(bytes.find("Created with ORVA Audio To MIDI VST"), std::string::npos);
    EXPECT_NE(bytes.find("\x90\x45\x64"), std::string::npos);
}

TEST_F(PluginObject, LevelsShowTheLoudestNearTheTopAndNotesAtIt) {
    host.Play(a440);
    std::vector<unsigned char> levels;
    for (int tick = 0; tick < 200; ++tick) effect->buildLevels(levels);  // 0.93^200 < 1e-6: settled
    ASSERT_EQ(levels.size(), 84U);
    EXPECT_EQ(levels[45], 255);  // MIDI 69 sounds
    EXPECT_EQ(std::count(levels.begin(), levels.end(), 255), 1);
}
