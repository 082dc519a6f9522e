// What the plug-in says to its host, and what it asks of it.
#include <unistd.h>

#include <fstream>
#include <iterator>

#include "plugin/mem_log.h"
#include "tests/plugin/plugin_test.h"

namespace {

using testing::Contains;
using testing::ElementsAre;

class HostAdapter : public PluginTest {};
class OlderHost : public PluginTest {
protected:
    OlderHost() : PluginTest(2300) {}
    int Wanted() const { return host.Count(audioMasterWantMidi); }
};
class NewerHost : public PluginTest {
protected:
    NewerHost() : PluginTest(2401) {}
};
class AbletonHost : public PluginTest {
protected:
    AbletonHost() : PluginTest(2400, "Ableton") {}
};
class AlmostAbletonHost : public PluginTest, public testing::WithParamInterface<const char*> {
protected:
    AlmostAbletonHost() : PluginTest(2400, GetParam()) {}
};
INSTANTIATE_TEST_SUITE_P(ByVendor, AlmostAbletonHost,
                         testing::Values("Ableton AG", "ableton", "Ablet", "", nullptr));

constexpr std::int32_t fixedFlags = effFlagsCanReplacing | effFlagsCanDoubleReplacing;

TEST(Entry, RefusesAHostOfVersionZeroAndNoHostAtAll) {
    FakeHost host(0);
    EXPECT_EQ(OpenPlugin(FakeHost::Callback), nullptr);
    EXPECT_EQ(host.calls, 1);  // nothing else is asked of it
    EXPECT_EQ(host.Count(audioMasterVersion), 1);
    EXPECT_EQ(OpenPlugin(nullptr), nullptr);
}

TEST_F(HostAdapter, DeclaresItselfInTheRecord) {
    const AEffect& effect = *plug->effect;
    EXPECT_EQ(effect.magic, kEffectMagic);
    EXPECT_EQ(effect.version, 1);
    EXPECT_EQ(effect.uniqueID, 0x4F525631);  // 'O' 'R' 'V' '1'
    EXPECT_EQ(effect.numPrograms, 1);
    EXPECT_EQ(effect.numParams, 96);
    EXPECT_EQ(effect.numInputs, 1);
    EXPECT_EQ(effect.numOutputs, 1);
    EXPECT_EQ(effect.flags & ~effFlagsHasEditor, fixedFlags);  // mono is not declared to this version
}

TEST_F(OlderHost, IsToldOfMono) {
    EXPECT_EQ(plug->effect->flags & ~effFlagsHasEditor, fixedFlags | effFlagsCanMono);
}

TEST_F(NewerHost, CountsAsNotOfThisVersion) {
    EXPECT_EQ(plug->effect->flags & ~effFlagsHasEditor, fixedFlags | effFlagsCanMono);
    Play(Sines({69}, 0.01));
    EXPECT_EQ(host.Count(audioMasterWantMidi), 1);
}

TEST_F(HostAdapter, IdentifiesItself) {
    EXPECT_EQ(plug->Text(effGetEffectName), "ORVA Audio To MIDI");
    EXPECT_EQ(plug->Text(effGetProductString), "ORVA Audio To MIDI");
    EXPECT_EQ(plug->Text(effGetVendorString), "ORVASOFT");
    EXPECT_EQ(plug->Call(effGetVendorVersion), 5632);
    EXPECT_EQ(plug->Call(effGetPlugCategory), kPlugCategAnalysis);
    EXPECT_EQ(plug->Call(effGetVstVersion), 2400);
    EXPECT_EQ(plug->Call(effSetProcessPrecision, 0, kVstProcessPrecision32), 1);
    EXPECT_EQ(plug->Call(effSetProcessPrecision, 0, kVstProcessPrecision64), 1);
    EXPECT_EQ(plug->Call(effGetProgram), 0);
    void* chunk = nullptr;
    EXPECT_EQ(plug->Call(effGetChunk, 0, 0, &chunk), 0);
}

TEST_F(HostAdapter, ConstructionAsksAndTellsWhatItMust) {
    EXPECT_THAT(host.canDos, Contains("receiveVstMidiEvent"));
    EXPECT_EQ(host.Count(audioMasterUpdateDisplay), 3);  // one for each basic parameter
    // The output is attached while programs are still sent: the host hears of it before it has the effect.
    EXPECT_THAT(host.events, ElementsAre(FakeHost::Event{0, std::string("\xC0\0\0", 3)}));
    EXPECT_EQ(host.Count(audioMasterWantMidi), 0);
}

TEST_F(HostAdapter, ClaimsOneCapabilityByItsExactName) {
    const auto canDo = [&](const char* text) { return plug->Call(effCanDo, 0, 0, const_cast<char*>(text)); };
    for (const char* other : {"sendVstMidiEventFlagIsRealtime", "sendVstMidiEven", "SendVstMidiEvent", "",
                              "receiveVstMidiEvent", "receiveVstTimeInfo", "sendVstEvents"})
        EXPECT_EQ(canDo(other), 0) << other;
    EXPECT_FALSE(Object().hostAskedMidiOut);
    EXPECT_EQ(canDo("sendVstMidiEvent"), 1);
    EXPECT_TRUE(Object().hostAskedMidiOut);
}

TEST_F(OlderHost, IsAskedForEventsAtTheFirstBlockAndAtEachLaterResume) {
    plug->Call(effMainsChanged, 0, 1);
    EXPECT_EQ(Wanted(), 0);  // no block has come
    Play(Sines({69}, 0.01), 64);
    EXPECT_EQ(Wanted(), 1);
    plug->Call(effMainsChanged, 0, 0);
    EXPECT_EQ(Wanted(), 1);
    plug->Call(effMainsChanged, 0, 1);
    plug->Call(effMainsChanged, 0, 1);
    EXPECT_EQ(Wanted(), 3);
    EXPECT_EQ(host.lastValue, 1);
    plug->Call(effCanDo, 0, 0, const_cast<char*>("sendVstMidiEvent"));
    plug->Call(effMainsChanged, 0, 1);
    EXPECT_EQ(Wanted(), 3);  // it knows by now
}

TEST_F(OlderHost, AFirstBlockOfNoLengthAsksButLeavesTheCountersAtZero) {
    plug->effect->processReplacing(plug->effect, nullptr, nullptr, 0);
    EXPECT_EQ(Wanted(), 1);
    plug->Call(effMainsChanged, 0, 1);
    EXPECT_EQ(Wanted(), 1);

    Plug asked(OpenPlugin(FakeHost::Callback));
    asked.Call(effCanDo, 0, 0, const_cast<char*>("sendVstMidiEvent"));
    asked.Play(host, Sines({69}, 0.01), 64);  // it knows before its first block
    EXPECT_EQ(Wanted(), 1);
}

TEST_F(HostAdapter, AHostOfThisVersionIsNeverAskedForEvents) {
    plug->Call(effMainsChanged, 0, 1);
    Play(Sines({69}, 0.01));
    plug->Call(effMainsChanged, 0, 1);
    EXPECT_EQ(host.Count(audioMasterWantMidi), 0);
}

// With the detection delay taken off, a note would be dated near 0, where the sine begins. Without, it stands
// at the frame in which it was decided.
TEST_F(AbletonHost, GetsNotesAtTheFrameOfTheirDetection) {
    host.events.clear();
    Play(Sines({69}, 0.4), 4096);
    ASSERT_FALSE(host.events.empty());
    EXPECT_EQ(host.events[0].data, std::string("\x90\x45\x64", 3));
    EXPECT_EQ(host.events[0].at % 441, 0);  // at the end of a frame
    EXPECT_GE(host.events[0].at, 3 * 441);  // three frames decide
}

TEST_P(AlmostAbletonHost, GetsFullDates) {
    EXPECT_FALSE(Object().hostIsAbletonCopy);
    host.events.clear();
    Play(Sines({69}, 0.4), 441);
    ASSERT_FALSE(host.events.empty());
    // 65.2 ms of band 45: 40 + 38 x (1.11565 / 84) / 0.02 ms, in samples 2876, before the end of a frame
    EXPECT_EQ((host.events[0].at + 2876) % 441, 0);
}

constexpr const char* expectedFacts = R"(
getMasterVersion: 2400
getHostVendorString: Maker
getHostVendorVersion: 1234
getHostProductString: [Unknown]

sendVstEvents                  : 0
sendVstMidiEvent               : 0
sendVstTimeInfo                : 0
receiveVstEvents               : 0
receiveVstMidiEvent            : 0
receiveVstTimeInfo             : 0
reportConnectionChanges        : 0
acceptIOChanges                : 0
sizeWindow                     : 1
asyncProcessing                : 0
offline                        : -1
supplyIdle                     : 0
supportShell                   : 0
openFileSelector               : 0
editFile                       : 0
closeFileSelector              : 0
startStopProcess               : 0
shellCategory                  : 0
sendVstMidiEventFlagIsRealtime : 0

)";

TEST_F(HostAdapter, OpeningLogsTheHostsFactsEachTime) {
    const std::string before = getMemLog().text();
    plug->Call(effOpen);
    plug->Call(effOpen);
    EXPECT_EQ(getMemLog().text(), before + expectedFacts + expectedFacts);
}

TEST(Log, HoldsEachBlockInItsPlaceHoweverOftenItComes) {
    MemLog log;
    for (const char* const block : {"a\n", "a\n", "b\n", "a\n", "", "b\n", "b\n"}) log.append(block);
    EXPECT_EQ(log.text(), "a\na\nb\na\nb\nb\n");
}

TEST(Log, SavesItsWholeTextOverWhatIsThere) {
    MemLog log;
    const std::string path = testing::TempDir() + "orva_log_" + std::to_string(getpid());
    log.append("a line that is longer than the next text\n");
    EXPECT_TRUE(log.saveToFile(path));
    MemLog other;
    other.append("short\n");
    for (int twice = 0; twice < 2; ++twice) {
        EXPECT_TRUE(other.saveToFile(path));
        std::ifstream file(path);
        EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), "short\n");
    }
    std::remove(path.c_str());
    EXPECT_FALSE(log.saveToFile(testing::TempDir() + "no/such/folder/log"));
}

}  // namespace
