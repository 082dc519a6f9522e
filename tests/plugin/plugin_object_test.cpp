// What a host and an editor get from one instance where the walks through random calls do not look.
#include <unistd.h>

#include "delivery/rt_recording.h"
#include "module/plugin_entry.h"
#include "plugin/gui_plugin_ex.h"
#include "tests/support/devices.h"
#include "tests/support/host.h"
#include "tests/support/messages.h"
#include "tests/support/music.h"

namespace {

using Shown = std::pair<std::int32_t, float>;  // a parameter and its value
std::vector<Shown> shown;                      // what the editor was notified of

struct FakeEditor : IPluginEditor {
    bool getRect(ERect**) override { return false; }
    bool open(void*) override { return false; }
    void close() override {}
    bool isOpen() const override { return false; }
    void idle() override {}
    void parameterChanged(std::int32_t index, float value) override { shown.emplace_back(index, value); }
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

    Messages messages;
    Host host;
    CORVAguivstEx* effect = nullptr;
};

}  // namespace

// A host's buffer has any length, and may hold what is no number.
TEST(InputMeter, TakesTheHighestSampleSinceTheLastLookWhereverItStands) {
    InputMeter meter;
    std::vector<float> block(11, 0.25F);
    meter.Measure(block.data(), block.size());
    EXPECT_EQ(meter.TakePeak(), 0.0F);  // nobody watches
    meter.Watch(true);
    for (std::size_t at = 0; at < block.size(); ++at) {
        std::vector<float> single = block;
        single[at] = at % 2 != 0 ? -1.5F : 1.5F;
        single[(at + 4) % single.size()] = std::nanf("");
        meter.Measure(single.data(), single.size());
        meter.Measure(block.data(), block.size());
        EXPECT_EQ(meter.TakePeak(), 1.5F) << at;
        meter.Measure(std::vector<double>(single.begin(), single.end()).data(), single.size());
        EXPECT_EQ(meter.TakePeak(), 1.5F) << at;
    }
    EXPECT_EQ(meter.TakePeak(), 0.0F);
}

// A block that begins after a suspend starts all outputs again, however the two lay before.
TEST_F(PluginObject, ARecordingTakesNotesAgainAfterASuspendBesideBlocks) {
    host.keepsEvents = false;
    effect->startRecording();
    std::atomic<int> blocks{0};
    std::atomic<bool> done{false};
    std::thread audio([&] {
        for (; !done; ++blocks) host.Play({0.1F});
    });
    int dead = 0;
    for (int round = 0; round < 200; ++round) {
        host.Call(effMainsChanged);
        for (const int target = blocks + 2; blocks < target;) std::this_thread::yield();
        effect->noteRecorder.outputs.ForEach([&](const TNoteOut& output) {
            if (dynamic_cast<const TRTRecording*>(&output) != nullptr && !output.running) ++dead;
        });
    }
    done = true;
    audio.join();
    EXPECT_EQ(dead, 0);
}

// With the delay of the detection taken off, band 45 is dated 40 + 38 x (1.11565 / 84) / 0.02 = 65.2 ms, in
// samples 2876, before the end of a frame. In blocks of one frame it begins 441 - 2876 samples after the
// begin of its block, and the silence that ends it comes at the begin of one. The last three events are sent
// between blocks.
TEST(HostByProduct, OnlyTheKnownOnesGetEarlyEventsAtTheBlocksFirstSample) {
    const auto played = [](const char* product, NoteDates preferred = NoteDates::automatic) {
        EXPECT_TRUE(StorePreferredNoteDates(preferred));
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
    EXPECT_EQ(played("Ardour", NoteDates::whenBegun), early);  // unless the user prefers otherwise
    EXPECT_EQ(played("Maker's Studio", NoteDates::neverEarly), raised);
    EXPECT_TRUE(StorePreferredNoteDates(NoteDates::automatic));
}

TEST_F(PluginObject, TheEditorHearsOfAHostsChangesAndNotOfItsOwn) {
    Set(paramChannel, 0.5F);
    Set(paramChannel, 1.01F);  // channel 17: the menu goes back
    EXPECT_EQ(TakenShown(), (std::vector<Shown>{{90, 0.5F}, {90, 0.5F}, {90, 1.01F}}));
    std::vector<Shown> automated;
    host.answers = [&](const Host::Request& request, std::intptr_t&) {
        if (request.opcode == audioMasterAutomate && request.value == 0)
            automated.emplace_back(request.index, request.opt);
        return false;
    };
    effect->setParameterFromEditor(paramChannel, 0.25F);
    EXPECT_EQ(automated, (std::vector<Shown>{{90, 0.25F}}));
    EXPECT_TRUE(TakenShown().empty());
    Set(200, 1);  // no parameter: nothing, but the editor hears of it
    EXPECT_EQ(TakenShown(), (std::vector<Shown>{{200, 1.0F}}));
}

TEST_F(PluginObject, TheEditorSeesARefusedDeviceGoBackToTheOneThatWasOpen) {
    Set(paramDeviceEnabled, 1);
    layer.refusedOpens[2] = 4;
    TakenShown();
    Set(paramDevice, 0.02F);
    EXPECT_EQ(TakenShown(), (std::vector<Shown>{{88, 0.0F}, {88, 0.02F}}));
    layer.refusedOpens[0] = 4;  // now the old one is gone, too, and the switch goes off
    Set(paramDevice, 0.02F);
    EXPECT_EQ(TakenShown(), (std::vector<Shown>{{89, 0.0F}, {88, 0.02F}}));
    Set(paramDeviceEnabled, 1);  // nor can it be switched on
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
