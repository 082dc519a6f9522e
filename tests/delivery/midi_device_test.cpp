// The device list, the ports and the output on top of them, on a layer of fake devices.
#include <cstdlib>
#include <memory>
#include <random>
#include <stdexcept>

#include "delivery/midi_device_list.h"
#include "delivery/midi_ports.h"
#include "delivery/rt_midi_out.h"
#include "tests/delivery/fakes.h"
#include "tests/delivery/midi_device_layer.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Calls = FakeLayer::Calls;

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
    struct Row {
        SystemVersion version;
        bool mapper;
    };
    for (const Row& row :
         {Row{{5, 9}, true}, {{6, 1}, true}, {{6, 2}, false}, {{7, 0}, false}, {{10, 0}, false}}) {
        FakeLayer other;
        other.version = row.version;
        SubstituteMidiOut(&other);
        EXPECT_EQ(MapperIsGone(), !row.mapper);
        EXPECT_EQ(MidiOutDeviceCount(), row.mapper ? 4U : 3U);
        EXPECT_EQ(MidiOutDeviceName(0), row.mapper ? "MIDI Mapper" : "one");
        EXPECT_EQ(MidiOutDeviceName(1), row.mapper ? "one" : "two");
        EXPECT_EQ(FindMidiOutDevice("three"), row.mapper ? 3U : 2U);
        EXPECT_EQ(other.versionsAsked, 1);  // and kept
    }
    SubstituteMidiOut(&layer);
}

TEST_F(DeviceList, WithAMapperIndexOneOpensDeviceZero) {
    layer.version = {6, 1};
    { const TRTMidiOut mapper(0), first(1); }
    EXPECT_THAT(layer.Taken(), ElementsAre("open mapper", "open 0", "close 2", "close 1"));
}

TEST_F(DeviceList, OddNamesLeaveAsLegalText) {
    std::u16string full(31, u'x');
    full[0] = 0xDC00;             // low half alone
    full[30] = 0xD83D;            // high half, and then the end
    layer.names = {full,          // 31 units and the terminator
                   full + u"yz",  // no terminator in the field at all
                   u"", u"caf\u00e9 \U0001F3B9"};
    const std::string expected = "\xEF\xBF\xBD" + std::string(29, 'x') + "\xEF\xBF\xBD";  // U+FFFD for halves
    EXPECT_EQ(MidiOutDeviceName(0), expected);
    EXPECT_EQ(MidiOutDeviceName(1), expected);
    EXPECT_EQ(MidiOutDeviceName(2), "");
    EXPECT_EQ(MidiOutDeviceName(3), "caf\xC3\xA9 \xF0\x9F\x8E\xB9");
}

TEST_F(DeviceList, EachRefusalRaisesItsText) {
    for (std::uint32_t code = 1; code <= 20; ++code) {
        layer.refusedOpens[1] = code;
        try {
            const TRTMidiOut out(1);
            FAIL() << "code " << code << " opened";
        } catch (const std::runtime_error& error) {
            EXPECT_EQ(error.what(), "code " + std::to_string(code));
        }
    }
    EXPECT_FALSE(IsPortValid(0));                                                    // and left nothing
    layer.errorText = [](std::uint32_t) { return std::u16string(256, u'\u00e9'); };  // no terminator
    EXPECT_EQ(MidiOutErrorText(4).size(), 512U);
}

TEST_F(DeviceList, NoDeviceBesideTheMapperMeansNoDriver) {
    EXPECT_EQ(MidiOutErrorText(2), "code 2");
    FakeLayer old;
    old.version = {6, 1};
    SubstituteMidiOut(&old);
    EXPECT_EQ(MidiOutErrorText(2), "code 2");
    old.names.clear();
    EXPECT_EQ(MidiOutErrorText(2), "code 6");
    EXPECT_EQ(MidiOutErrorText(4), "code 4");
    layer.names.clear();
    SubstituteMidiOut(&layer);
    EXPECT_EQ(MidiOutErrorText(2), "code 2");
}

using Ports = DeviceTest;

TEST_F(Ports, TwoOutputsShareADevice) {
    auto older = std::make_unique<TRTMidiOut>(2);
    auto newer = std::make_unique<TRTMidiOut>(2);
    EXPECT_NE(older->port, newer->port);
    older->Send(Word(0x90, 60, 100));
    newer->Send(Word(0x91, 62, 100));
    EXPECT_THAT(layer.Taken(), ElementsAre("open 2", "send 1 90 3c 64", "send 1 91 3e 64"));
    older.reset();  // its note is its own affair: the device stays, in the hands of the other
    EXPECT_THAT(layer.Taken(), IsEmpty());
    newer.reset();
    EXPECT_THAT(layer.Taken(), ElementsAre("send 1 81 3e 00", "close 1"));
}

TEST_F(Ports, AFreedPortIsUsedAgainWithTheNotesOfItsLastLife) {
    auto older = std::make_unique<TRTMidiOut>(0);
    const std::uint32_t number = older->port;
    const TRTMidiOut newer(0);
    older->Send(Word(0x90, 60, 100));
    older.reset();
    TRTMidiOut next(1);
    EXPECT_EQ(next.port, number);
    layer.Taken();
    SilencePort(number);
    EXPECT_THAT(layer.Taken(), ElementsAre("send 2 80 3c 00"));  // on the new device, as it is kept by port
}

TEST_F(Ports, ANoteOffThatFailedIsTriedAgainAtTheEnd) {
    layer.refusedMessages[Word(0x80, 60, 0)] = MMSYSERR_ERROR;
    {
        TRTMidiOut out(0);
        out.Send(Word(0x90, 60, 100));
        EXPECT_EQ(SendShort(out.port, Word(0x80, 60, 0)), MMSYSERR_ERROR);
        layer.refusedMessages[Word(0x9F, 61, 1)] = MMSYSERR_ERROR;
        out.Send(Word(0x9F, 61, 1));   // never sounded
        out.Send(Word(0x92, 127, 0));  // velocity 0 counts as a note that is on
        layer.Taken();
    }
    EXPECT_THAT(layer.Taken(), ElementsAre("send 1 80 3c 00", "send 1 82 7f 00", "close 1"));
}

TEST_F(Ports, ResetPutsAllControllersAndNotesDown) {
    std::uint32_t port = 0;
    ASSERT_EQ(OpenPort(port, 0), MMSYSERR_NOERROR);
    layer.Taken();
    ResetPort(port);
    const Calls calls = layer.Taken();
    ASSERT_EQ(calls.size(), 33U);  // 16 channels, twice, and the device's own
    EXPECT_EQ(calls[0], "send 1 b0 79 00");
    EXPECT_EQ(calls[15], "send 1 bf 79 00");
    EXPECT_EQ(calls[16], "send 1 b0 7b 00");
    EXPECT_EQ(calls[32], "reset 1");
    const std::uint8_t bytes[] = {0xF0, 0x7E, 0xF7};
    EXPECT_EQ(SendLong(port, {bytes, 3}), MMSYSERR_NOERROR);
    EXPECT_EQ(SendLong(port + 1, {bytes, 3}), MMSYSERR_ERROR);
    EXPECT_THAT(layer.Taken(), ElementsAre("long 1 3"));
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
    EXPECT_THAT(layer.Taken(), ElementsAre("open 0", "send 1 c5 07 00", "send 1 b5 07 00"));
}

TEST_F(Ports, AnUnloadEndsNotesAndGivesEveryDeviceBack) {
    auto table = std::make_unique<MidiPortTable>();
    std::uint32_t first = 0, second = 0;
    table->OpenPort(first, 0);
    table->OpenPort(second, 1);
    table->SendShort(second, Word(0x93, 64, 90));
    layer.Taken();
    table->Unload();
    EXPECT_THAT(layer.Taken(), ElementsAre("send 2 83 40 00", "close 1", "close 2"));
    EXPECT_EQ(table->SendShort(second, Word(0x90, 60, 1)), MMSYSERR_ERROR);
    EXPECT_EQ(table->OpenPort(first, 0), MMSYSERR_ERROR);
    EXPECT_FALSE(table->IsPortValid(second));
    table->ClosePort(second);
    table.reset();
    EXPECT_THAT(layer.Taken(), IsEmpty());
}

TEST_F(Ports, ALayerThatThrowsIsAFailureLikeAnyOther) {
    MidiPortTable table;
    std::uint32_t port = 0;
    const auto fail = [](const std::string&) { throw std::logic_error("a layer's fault"); };
    layer.during = fail;
    EXPECT_EQ(table.OpenPort(port, 0), MMSYSERR_ERROR);
    layer.during = [](const std::string&) {};
    ASSERT_EQ(table.OpenPort(port, 0), MMSYSERR_NOERROR);
    layer.during = fail;
    EXPECT_EQ(table.SendShort(port, Word(0x90, 60, 1)), MMSYSERR_ERROR);
    layer.during = [](const std::string&) {};
    table.ClosePort(port);
    EXPECT_THAT(layer.Taken(), ElementsAre("open 0", "open 0", "send 1 90 3c 01", "close 1"));
}

// A process that ends with a device open and a note on; standard error tells what the layer heard.
[[noreturn]] void EndWithANoteOn() {
    auto* const told = new FakeLayer;  // must outlive the process's destructors
    told->during = [](const std::string& call) { std::fprintf(stderr, "[%s]", call.c_str()); };
    SubstituteMidiOut(told);
    auto* const out = new TRTMidiOut(1);  // as in a host that never closes its plug-ins
    out->Send(Word(0x94, 60, 100));
    std::exit(7);
}

TEST(PortsDeathTest, TheEndOfTheProcessClosesTheDevice) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(EndWithANoteOn(), testing::ExitedWithCode(7),
                testing::HasSubstr("[open 1][send 1 94 3c 64][send 1 84 3c 00][close 1]"));
}

// A recorder's notes reach the device as the words of its tables.
class DeviceOut : public RecorderTest {
protected:
    DeviceOut() { SubstituteMidiOut(&layer); }
    ~DeviceOut() override { SubstituteMidiOut(nullptr); }
    FakeLayer layer;
};

TEST_F(DeviceOut, PlaysTheBandsThatHaveANote) {
    recorder.ChangeTranspose(80);  // band 0 is note 104, band 23 note 127: there are none above
    auto out = std::make_unique<TRTMidiOut>(1);
    EXPECT_EQ(out->deviceIndex, 1U);
    recorder.AddOutput(out.get());
    out->Start();
    Frame({0, 23, 24, 60});
    Frame({23});
    EXPECT_THAT(layer.Taken(),
                ElementsAre("open 1", "send 1 90 68 64", "send 1 90 7f 64", "send 1 80 68 00"));
    recorder.Broadcast(Word(0xC0, 5, 0));
    out->Stop();
    recorder.RemoveOutput(out.get());
    EXPECT_THAT(layer.Taken(), ElementsAre("send 1 c0 05 00", "send 1 80 7f 00"));
    out->NoteOn(23);  // detached
    out.reset();
    EXPECT_THAT(layer.Taken(), ElementsAre("close 1"));
}

// The rules of the table once more, as plain as can be, on the same layer.
struct PlainTable {
    struct Port {
        MidiOutHandle handle = 0;
        std::uint32_t device = 0;
        bool isFree = false;
        std::set<std::pair<std::uint32_t, std::uint32_t>> on;  // note, channel: the order of a silencing
    };
    struct Device {
        MidiOutHandle handle = 0;
        int users = 0;
    };
    explicit PlainTable(FakeLayer& under) : layer(under) {}

    std::uint32_t Open(std::uint32_t& number, std::uint32_t device) {
        if (closed) return 1;
        if (devices.count(device) == 0) {
            MidiOutHandle handle = 0;
            if (const std::uint32_t code = layer.midiOutOpen(handle, device)) return code;
            devices[device].handle = handle;
        }
        ++devices[device].users;
        for (number = 0; number < ports.size() && !ports[number].isFree;) ++number;
        if (number == ports.size()) ports.emplace_back();
        ports[number].handle = devices[device].handle;
        ports[number].device = device;
        ports[number].isFree = false;
        return 0;
    }
    void Silence(std::uint32_t number) {
        if (number >= ports.size()) return;
        for (const auto& [note, channel] : ports[number].on)
            layer.midiOutShortMsg(ports[number].handle, Word(0x80 | channel, note, 0));
        ports[number].on.clear();
    }
    void Close(std::uint32_t number) {
        if (closed || number >= ports.size() || ports[number].isFree) return;
        Device& device = devices[ports[number].device];
        if (--device.users < 1) {
            Silence(number);
            layer.midiOutClose(device.handle);
            devices.erase(ports[number].device);
        }
        if (number + 1 == ports.size())
            ports.pop_back();
        else
            ports[number].isFree = true;
    }
    std::uint32_t Send(std::uint32_t number, std::uint32_t message) {
        if (closed || number >= ports.size()) return 1;
        if (ports[number].isFree) return 5;
        if (const std::uint32_t code = layer.midiOutShortMsg(ports[number].handle, message)) return code;
        const std::pair note{message >> 8 & 127, message & 15};
        if ((message & 0xF0) == 0x90) ports[number].on.insert(note);
        if ((message & 0xF0) == 0x80) ports[number].on.erase(note);
        return 0;
    }
    void Unload() {
        closed = true;
        for (std::uint32_t number = 0; number < ports.size(); ++number) Silence(number);
        for (const auto& [index, device] : devices) layer.midiOutClose(device.handle);
        devices.clear();
        ports.clear();
    }

    FakeLayer& layer;
    bool closed = false;
    std::vector<Port> ports;
    std::map<std::uint32_t, Device> devices;
};

TEST_F(Ports, RandomOperationsDoWhatThePlainRulesDo) {
    std::minstd_rand engine(1);
    const auto random = [&engine](std::uint32_t below) {
        return static_cast<std::uint32_t>(engine() % below);
    };
    for (int round = 0; round < 20; ++round) {
        FakeLayer ours, theirs;
        for (FakeLayer* const each : {&ours, &theirs}) {
            each->refusedOpens = {{4, MMSYSERR_ALLOCATED}, {5, MMSYSERR_BADDEVICEID}};
            each->refusedMessages = {{Word(0x80, 3, 0), MMSYSERR_ERROR}, {Word(0x91, 2, 9), MMSYSERR_ERROR}};
        }
        SubstituteMidiOut(&ours);
        MidiPortTable table;
        PlainTable plain(theirs);
        for (int step = 0; step < 5000; ++step) {
            const std::uint32_t port = random(50) == 0 ? 0xFFFFFFFF : random(24);
            const std::uint32_t statuses[] = {0x80, 0x90, 0x81, 0x91, 0xC0};
            const std::uint32_t message = Word(statuses[random(5)], random(4), random(10));
            std::uint32_t got = 99, expected = 99;
            switch (random(8)) {
                case 0:
                case 1: {
                    const std::uint32_t device = random(6);
                    ASSERT_EQ(table.OpenPort(got, device), plain.Open(expected, device));
                    ASSERT_EQ(got, expected);
                    break;
                }
                case 2: table.ClosePort(port), plain.Close(port); break;
                case 3: table.SilencePort(port), plain.Silence(port); break;
                default: ASSERT_EQ(table.SendShort(port, message), plain.Send(port, message));
            }
            if (random(10000) == 0) table.Unload(), plain.Unload();
            ASSERT_EQ(table.IsPortValid(port), !plain.closed && port < plain.ports.size());
            ASSERT_EQ(ours.Taken(), theirs.Taken()) << "round " << round << " step " << step;
        }
        table.Unload(), plain.Unload();
        EXPECT_EQ(ours.Taken(), theirs.Taken());
        EXPECT_TRUE(ours.open.empty());
    }
    SubstituteMidiOut(&layer);
}

}  // namespace
