// What runs promise beyond what every face does.
#include "lv2/midi_port.h"
#include "tests/lv2/lv2_host.h"
#include "tests/support/devices.h"
#include "tests/support/music.h"
#include "tests/support/watch.h"

namespace {

// Hard-real-time: from the first run on, whatever its length, whatever ports change.
TEST(Lv2Run, AllocatesNothing) {
    Lv2Host host;
    host.Activate();
    Audio audio = Tones({60, 64, 67}, 1.0);
    host.descriptor->connect_port(host.handle, portAudioIn, audio.data());
    host.descriptor->connect_port(host.handle, portAudioOut, audio.data());
    std::uint64_t requested = 0;
    for (const std::uint32_t frames : {64U, 0U, 1000U, 20000U, 5000U}) {
        for (float& value : host.control) value = 1.0F - value;
        for (float& value : host.hearing) value = 1.0F - value;  // the refined ear every other time
        const std::uint64_t before = Allocations::Requested();
        host.descriptor->run(host.handle, frames);
        requested += Allocations::Requested() - before;
    }
    EXPECT_EQ(requested, 0U);
    for (std::uint32_t port = 0; port < portCount + 1; ++port)  // and needs no port
        host.descriptor->connect_port(host.handle, port, nullptr);
    host.descriptor->run(host.handle, 512);
}

// 8 bytes of body and 24 for each event: 16 for its head, 2 or 3 for the message, padded to a multiple of 8.
TEST(Lv2MidiPort, StaysWithinTheHostsBuffer) {
    std::uint64_t buffer[8] = {};
    auto& sequence = *reinterpret_cast<LV2_Atom_Sequence*>(buffer);
    MidiPort port(1, 2);
    port.Connect(&sequence);
    for (const std::uint32_t capacity : {8U + 24U + 23U, 7U}) {
        sequence.atom = {capacity, 0};
        port.Begin();
        EXPECT_EQ(port.Write(5, 0x0005C0), capacity > 8);
        EXPECT_FALSE(port.Write(6, 0x644590));
        EXPECT_EQ(EventsOf(sequence, 2), capacity > 8 ? Lv2Events({{5, "\xC0\x05"}}) : Lv2Events());
    }
}

// MIDI devices are never opened by the thread of a run.
using Lv2Device = DeviceTest;

TEST_F(Lv2Device, TheHostsWorkerOpensItAndTheNewestRequestWins) {
    Lv2Host host;
    const auto run = [&](float device, float enabled) {
        host.control[paramDevice] = device;
        host.control[paramDeviceEnabled] = enabled;
        host.Run(Silence(64));
        return layer.Taken();
    };
    using Calls = FakeDevices::Calls;
    host.refusesWork = true;  // such a host is asked again
    EXPECT_EQ(run(0.01F, 1), Calls());
    host.refusesWork = false;
    EXPECT_EQ(run(0.01F, 1), Calls());
    EXPECT_EQ(run(0.02F, 1), Calls());
    EXPECT_EQ(host.Work(), 2);
    EXPECT_EQ(run(0.02F, 0), Calls{"open 2"});
    host.Work();
    EXPECT_EQ(layer.Taken(), Calls{"close 1"});
}

}  // namespace
