// Opens and closes of the port table that meet; sends beside them are the promise THR-3's. What the tests
// state holds in any build; the thread sanitizer says the rest. A lock held where none may be shows as a test
// that never ends.
#include <atomic>
#include <future>

#include "delivery/midi_ports.h"
#include "tests/delivery/midi_device_layer.h"
#include "tests/support/counting_devices.h"

namespace {

constexpr std::uint32_t noteOn = 0x643C90;

// While the layer is at one device, in any of its calls, another thread opens, uses and closes another
// device.
TEST(PortThreads, NothingIsLockedWhileTheLayerWorks) {
    FakeLayer layer;
    SubstituteMidiOut(&layer);
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
    EXPECT_THAT(met, testing::ElementsAre("open", "send", "send", "close"));  // the note off in between
    EXPECT_TRUE(layer.open.empty());
    SubstituteMidiOut(nullptr);
}

// Two threads want the device that is just being opened, or closed: one of them opens it, both have it.
TEST(PortThreads, ADeviceInTheMiddleOfAChangeIsAwaited) {
    CountingDevices devices;
    SubstituteMidiOut(&devices);
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
    EXPECT_EQ(devices.faults, 0);
    EXPECT_EQ(devices.stale, 0);
    EXPECT_EQ(devices.opened, devices.closed);
    SubstituteMidiOut(nullptr);
}

// An unload waits for the device that another thread is opening, and gives that back too.
TEST(PortThreads, AnUnloadMeetsAnOpenHalfWay) {
    FakeLayer layer;
    SubstituteMidiOut(&layer);
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
    EXPECT_TRUE(layer.open.empty());
    EXPECT_EQ(table.SendShort(port, noteOn), MMSYSERR_ERROR);
    SubstituteMidiOut(nullptr);
}

}  // namespace
