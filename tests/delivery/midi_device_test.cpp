// The device list and the ports on top of it, on devices of the tests' own.
#include "devices/midi_device_list.h"
#include "devices/midi_ports.h"
#include "tests/support/devices.h"

namespace {

TEST(DeviceList, AMapperStandsInFrontOfTheDevicesUpToVersion61) {
    for (const SystemVersion version : {SystemVersion{6, 1}, {6, 2}, {10, 0}}) {
        const bool mapper = version.major == 6 && version.minor == 1;
        InstalledDevices other;
        other.version = version;
        EXPECT_EQ(MidiOutDeviceCount(), mapper ? 4U : 3U);
        EXPECT_EQ(MidiOutDeviceName(0), mapper ? "MIDI Mapper" : "one");
        EXPECT_EQ(FindMidiOutDevice("three"), mapper ? 3U : 2U);
        EXPECT_EQ(FindMidiOutDevice("thre"), 0U);  // unknown: indistinguishable from the first
        other.names.clear();                       // no device beside the mapper means no driver
        EXPECT_EQ(MidiOutErrorText(2), mapper ? "code 6" : "code 2");
        EXPECT_EQ(MidiOutErrorText(4), "code 4");
    }
}

using Ports = DeviceTest;

constexpr std::uint32_t noteOn = 0x643C90;

// Two threads want the device that the other is just opening or closing: one of them opens it, both have it.
TEST_F(Ports, ADeviceInTheMiddleOfAChangeIsAwaited) {
    layer.keepsLines = false;
    layer.judge = [](std::uint32_t) { std::this_thread::yield(); };  // the other one's turn
    MidiPortTable table;
    const auto use = [&table] {
        for (int round = 0; round < 10000; ++round) {
            std::uint32_t port = 0;
            EXPECT_EQ(table.OpenPort(port, 2), MMSYSERR_NOERROR);
            EXPECT_EQ(table.SendShort(port, noteOn), MMSYSERR_NOERROR);
            table.ClosePort(port);
        }
    };
    std::thread other(use);
    use();
    other.join();
    EXPECT_EQ(layer.faults + layer.stale, 0);
}

}  // namespace
