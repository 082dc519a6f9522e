// What the plug-in says to its host, and what it asks of it.
#include <unistd.h>

#include <fstream>
#include <iterator>

#include "plugin/mem_log.h"
#include "tests/plugin/plugin_test.h"

namespace {

class HostAdapter : public PluginTest {};
class AbletonHost : public PluginTest {
protected:
    AbletonHost() : PluginTest("Ableton") {}
};
class AlmostAbletonHost : public PluginTest, public testing::WithParamInterface<const char*> {
protected:
    AlmostAbletonHost() : PluginTest(GetParam()) {}
};
INSTANTIATE_TEST_SUITE_P(ByVendor, AlmostAbletonHost,
                         testing::Values("Ableton AG", "ableton", "Ablet", "", nullptr));

TEST(Entry, AsksAHostOfVersionZeroNothingElse) {
    FakeHost host(0);
    EXPECT_EQ(OpenPlugin(FakeHost::Callback), nullptr);
    EXPECT_EQ(host.calls, 1);
    EXPECT_EQ(host.Count(audioMasterVersion), 1);
}

TEST_F(HostAdapter, IdentifiesItself) {
    EXPECT_EQ(plug->effect->version, 1);
    EXPECT_EQ(plug->effect->numPrograms, 1);
    EXPECT_EQ(plug->Text(effGetEffectName), "ORVA Audio To MIDI");
    EXPECT_EQ(plug->Text(effGetProductString), "ORVA Audio To MIDI");
    EXPECT_EQ(plug->Text(effGetVendorString), "ORVASOFT");
    EXPECT_EQ(plug->Call(effGetVendorVersion), 5632);
    EXPECT_EQ(plug->Call(effGetPlugCategory), kPlugCategAnalysis);
    EXPECT_EQ(plug->Call(effGetVstVersion), 2400);
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
    const std::string path = testing::TempDir() + "orva_log_" + std::to_string(getpid());
    std::ofstream(path) << "a line that is longer than the next text\n";
    MemLog log;
    log.append("short\n");
    EXPECT_TRUE(log.saveToFile(path));
    std::ifstream file(path);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), "short\n");
    std::remove(path.c_str());
}

}  // namespace
