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

}  // namespace
