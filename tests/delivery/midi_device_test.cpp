// The device list, the ports and the output on top of them, on devices of the tests' own, and over JACK.
#include <atomic>
#include <future>
#include <memory>
#include <stdexcept>

#include "delivery/rt_midi_out.h"
#include "devices/midi_device_list.h"
#include "devices/midi_ports.h"
#include "tests/delivery/fakes.h"
#include "tests/support/devices.h"
#include "tests/support/jack_server.h"

namespace {

using Lines = FakeDevices::Calls;

constexpr std::uint32_t Word(std::uint32_t status, std::uint32_t data1, std::uint32_t data2) {
    return status | data1 << 8 | data2 << 16;
}

using DeviceList = DeviceTest;

TEST_F(DeviceList, NamesComeByIndex) {
    EXPECT_EQ(MidiOutDeviceCount(), 3U);
    EXPECT_EQ(MidiOutDeviceName(0), "one");
    EXPECT_EQ(MidiOutDeviceName(2), "three");
    EXPECT_EQ(MidiOutDeviceName(3), "");
    EXPECT_EQ(MidiOutDeviceName(0xFFFFFFFF), "");
    EXPECT_EQ(FindMidiOutDevice("three"), 2U);
    EXPECT_EQ(FindMidiOutDevice("thre"), 0U);  // unknown: indistinguishable from the first
    layer.names.clear();
    EXPECT_EQ(FindMidiOutDevice("one"), 0U);
}

TEST_F(DeviceList, AMapperStandsInFrontOfTheDevicesUpToVersion61) {
    const struct {
        SystemVersion version;
        bool mapper;
    } rows[] = {{{5, 9}, true}, {{6, 1}, true}, {{6, 2}, false}, {{7, 0}, false}, {{10, 0}, false}};
    for (const auto& row : rows) {
        FakeDevices other;
        other.version = row.version;
        SubstituteMidiOut(&other);
        EXPECT_EQ(MapperIsGone(), !row.mapper);
        EXPECT_EQ(MidiOutDeviceCount(), row.mapper ? 4U : 3U);
        EXPECT_EQ(MidiOutDeviceName(0), row.mapper ? "MIDI Mapper" : "one");
        EXPECT_EQ(MidiOutDeviceName(1), row.mapper ? "one" : "two");
        EXPECT_EQ(FindMidiOutDevice("three"), row.mapper ? 3U : 2U);
        EXPECT_EQ(MidiOutErrorText(2), "code 2");
        other.names.clear();  // no device beside the mapper means no driver
        EXPECT_EQ(MidiOutErrorText(2), row.mapper ? "code 6" : "code 2");
        EXPECT_EQ(MidiOutErrorText(4), "code 4");
        EXPECT_EQ(other.versionsAsked, 1);  // and kept
    }
    SubstituteMidiOut(&layer);
}

TEST_F(DeviceList, OddNamesLeaveAsLegalText) {
    constexpr std::size_t units = MidiOutCaps::nameUnits - 1;
    std::u16string full(units, u'x');
    full.back() = 0xD83D;                              // half a character, and then the end
    layer.names = {full, full + u"yz", u"caf\u00e9"};  // the second fills its field, without a terminator
    const std::string expected = std::string(units - 1, 'x') + "\xEF\xBF\xBD";  // U+FFFD for the half
    EXPECT_EQ(MidiOutDeviceName(0), expected);
    EXPECT_EQ(MidiOutDeviceName(1), expected);
    EXPECT_EQ(MidiOutDeviceName(2), "caf\xC3\xA9");
}

TEST_F(DeviceList, EachRefusalRaisesItsText) {
    const auto ports = [] {
        std::uint32_t count = 0;
        while (IsPortValid(count)) ++count;
        return count;
    };
    const std::uint32_t before = ports();  // of the tests that ran before, in this process
    for (std::uint32_t code = 1; code <= 20; ++code) {
        layer.refusedOpens[1] = code;
        try {
            const TRTMidiOut out(1);
            FAIL() << "code " << code << " opened";
        } catch (const std::runtime_error& error) {
            EXPECT_EQ(error.what(), "code " + std::to_string(code));
        }
    }
    EXPECT_EQ(ports(), before);
    layer.errorText = [](std::uint32_t) { return std::u16string(256, u'\u00e9'); };  // no terminator
    EXPECT_EQ(MidiOutErrorText(4).size(), 512U);
}

using Ports = DeviceTest;

TEST_F(Ports, TheProcesssOneTableTakesEveryCall) {
    std::uint32_t port = 0;
    ASSERT_EQ(OpenPort(port, 2), MMSYSERR_NOERROR);
    EXPECT_TRUE(IsPortValid(port));
    EXPECT_FALSE(IsPortValid(port + 1));
    const std::uint8_t bytes[] = {0xF0, 0x7E, 0xF7};
    EXPECT_EQ(SendLong(port, {bytes, 3}), MMSYSERR_NOERROR);
    EXPECT_EQ(SendShort(port, Word(0x93, 60, 100)), MMSYSERR_NOERROR);
    SilencePort(port);
    EXPECT_EQ(layer.Taken(), (Lines{"open 2", "long 1 3", "send 1 93 3c 64", "send 1 83 3c 00"}));
    ResetPort(port);
    EXPECT_EQ(layer.Taken().size(), 33U);  // 16 channels, twice, and the device's own
    ClosePort(port);
}

TEST_F(Ports, ProgramChangesCanBeDropped) {
    MidiPortTable table;
    std::uint32_t port = 0;
    ASSERT_EQ(table.OpenPort(port, 0), MMSYSERR_NOERROR);
    table.SendShort(port, Word(0xC5, 7, 0));
    table.ignoreProgramChange = true;
    EXPECT_EQ(table.SendShort(port, Word(0xC5, 8, 0)), MMSYSERR_NOERROR);
    table.SendShort(port, Word(0xB5, 7, 0));
    EXPECT_EQ(layer.Taken(), (Lines{"open 0", "send 1 c5 07 00", "send 1 b5 07 00"}));
}

TEST_F(Ports, ALayerThatThrowsIsAFailureLikeAnyOther) {
    MidiPortTable table;
    std::uint32_t port = 0;
    const auto fail = [](const std::string&) { throw std::logic_error("a layer's fault"); };
    layer.during = fail;
    EXPECT_EQ(table.OpenPort(port, 0), MMSYSERR_ERROR);
    layer.during = nullptr;
    ASSERT_EQ(table.OpenPort(port, 0), MMSYSERR_NOERROR);
    layer.during = fail;
    EXPECT_EQ(table.SendShort(port, Word(0x90, 60, 1)), MMSYSERR_ERROR);
    layer.during = nullptr;
    table.ClosePort(port);
    EXPECT_EQ(layer.Taken(), (Lines{"open 0", "open 0", "send 1 90 3c 01", "close 1"}));
}

constexpr std::uint32_t noteOn = 0x643C90;

// While the layer is at one device, in any of its calls, another thread opens, uses and closes another
// device.
TEST_F(Ports, NothingIsLockedWhileTheLayerWorks) {
    MidiPortTable table;
    std::vector<std::string> met;
    std::atomic<bool> inside{false};
    layer.during = [&](const std::string& call) {
        if (inside.exchange(true)) return;  // the other thread's own calls
        met.push_back(call.substr(0, call.find(' ')));
        std::async(std::launch::async, [&] {
            std::uint32_t other = 0;
            EXPECT_EQ(table.OpenPort(other, 2), MMSYSERR_NOERROR);
            EXPECT_EQ(table.SendShort(other, 0x3C80), MMSYSERR_NOERROR);
            table.ClosePort(other);
        }).get();
        inside = false;
    };
    std::uint32_t port = 0;
    EXPECT_EQ(table.OpenPort(port, 0), MMSYSERR_NOERROR);
    EXPECT_EQ(table.SendShort(port, noteOn), MMSYSERR_NOERROR);
    table.ClosePort(port);
    EXPECT_EQ(met, (Lines{"open", "send", "send", "close"}));  // the note off in between
}

// Two threads want the device that is just being opened, or closed: one of them opens it, both have it.
TEST_F(Ports, ADeviceInTheMiddleOfAChangeIsAwaited) {
    layer.keepsLines = false;
    MidiPortTable table;
    for (int round = 0; round < 300; ++round) {
        std::uint32_t mine = 0, theirs = 0;
        auto other = std::async(std::launch::async, [&] {
            const std::uint32_t result = table.OpenPort(theirs, 2);
            table.ClosePort(theirs);
            return result;
        });
        EXPECT_EQ(table.OpenPort(mine, 2), MMSYSERR_NOERROR);
        EXPECT_EQ(table.SendShort(mine, noteOn), MMSYSERR_NOERROR);
        EXPECT_EQ(other.get(), MMSYSERR_NOERROR);
        table.ClosePort(mine);
    }
    EXPECT_EQ(layer.faults + layer.stale, 0);
}

// An unload waits for the device that another thread is opening, and gives that back too.
TEST_F(Ports, AnUnloadMeetsAnOpenHalfWay) {
    MidiPortTable table;
    std::future<void> unloaded;
    layer.during = [&](const std::string& call) {
        if (call == "open 1") {
            unloaded = std::async(std::launch::async, [&] { table.Unload(); });
            std::uint32_t refused = 0;
            while (table.OpenPort(refused, 0) == MMSYSERR_NOERROR)
                table.ClosePort(refused);  // until it is closed
        }
    };
    std::uint32_t port = 0;
    table.OpenPort(port, 1);
    unloaded.get();
    EXPECT_EQ(layer.OpenCount(), 0);
    EXPECT_EQ(table.SendShort(port, noteOn), MMSYSERR_ERROR);
}

// A recorder's notes reach the device as the words of its tables.
class DeviceOut : public RecorderTest {
protected:
    DeviceOut() { SubstituteMidiOut(&layer); }
    ~DeviceOut() override { SubstituteMidiOut(nullptr); }
    FakeDevices layer;
};

TEST_F(DeviceOut, PlaysTheBandsThatHaveANote) {
    recorder.ChangeTranspose(80);  // band 0 is note 104, band 23 note 127: there are none above
    auto out = std::make_unique<TRTMidiOut>(1);
    EXPECT_EQ(out->deviceIndex, 1U);
    recorder.AddOutput(out.get());
    out->Start();
    Frame({0, 23, 24, 60});
    Frame({23});
    EXPECT_EQ(layer.Taken(), (Lines{"open 1", "send 1 90 68 64", "send 1 90 7f 64", "send 1 80 68 00"}));
    recorder.Broadcast(Word(0xC0, 5, 0));
    out->Stop();
    recorder.RemoveOutput(out.get());
    EXPECT_EQ(layer.Taken(), (Lines{"send 1 c0 05 00", "send 1 80 7f 00"}));
    out->NoteOn(23);  // detached
    out.reset();
    EXPECT_EQ(layer.Taken(), (Lines{"close 1"}));
}

// One instance of the plug-in, as far as its notes go.
struct Instance {
    explicit Instance(std::uint32_t device) {
        recorder.Attach(&detector);
        recorder.Activate(0);
        recorder.sendProgramChange = false;
        out = std::make_unique<TRTMidiOut>(device);
        recorder.AddOutput(out.get());
        out->Start();
    }
    ~Instance() {
        out->Stop();
        recorder.RemoveOutput(out.get());
    }
    Instance(const Instance&) = delete;
    Instance& operator=(const Instance&) = delete;

    void Frame(int band, bool on) {
        detector.Set(band, on);
        recorder.OnFrame();
    }

    FakeDetector detector;
    TNoteRecorder recorder;
    std::unique_ptr<TRTMidiOut> out;
};

TEST(DeviceOverJack, TwoInstancesShareADeviceUntilItsServerDies) {
    JackServer server;
    JackReceiver receiver("synth");
    ReadMidiOutDevices();
    const std::uint32_t device = FindMidiOutDevice("synth:in");
    ASSERT_EQ(MidiOutDeviceName(device), "synth:in");
    auto one = std::make_unique<Instance>(device);
    auto two = std::make_unique<Instance>(device);
    EXPECT_EQ(receiver.Senders(), Lines{"ORVA Audio To MIDI:out"});  // one client for both
    two->recorder.ChangeChannel(3);
    one->Frame(45, true);
    two->Frame(50, true);
    two->Frame(50, false);
    one.reset();  // its Stop ends its note; the device stays
    // The program of the new channel; bands 45 and 50 are notes 69 and 74.
    const std::vector<std::uint32_t> expected = {0x0000C3, 0x644590, 0x644A93, 0x004A83, 0x004580};
    ASSERT_TRUE(receiver.Await(expected.size()));
    for (std::size_t i = 0; i < expected.size(); ++i) EXPECT_EQ(receiver.At(i), expected[i]) << i;

    server.Die();
    for (int frame = 0; frame < 10000; ++frame) two->Frame(50, frame % 2 == 0);  // goes on, silently
    EXPECT_EQ(SendShort(two->out->port, 0x643C90), MMSYSERR_ERROR);
    EXPECT_THROW(TRTMidiOut{device + 1}, std::runtime_error);
    two.reset();
    EXPECT_THROW(TRTMidiOut{device}, std::runtime_error);
}

}  // namespace
