// The plug-in's runs, as the bundle's file does them.
#include <cmath>
#include <future>
#include <thread>

#include "lv2/midi_port.h"
#include "tests/lv2/lv2_host.h"
#include "tests/support/devices.h"
#include "tests/support/music.h"
#include "tests/support/watch.h"

namespace {

const std::string on69("\x90\x45\x64", 3), off69("\x80\x45\x00", 3);

TEST(Lv2Run, PortsAndDeactivationReachTheNotes) {
    Lv2Host host(FileDescriptor());
    host.Activate();
    const Lv2Events begin = host.Run(Tones({69}, 0.5));
    ASSERT_EQ(begin.size(), 2U);
    EXPECT_EQ(begin[0], (Lv2Event{0, std::string("\xC0\x00", 2)}));  // what the object sent while it was made
    EXPECT_EQ(begin[1].data, on69);
    host.Deactivate();
    host.Activate();
    EXPECT_EQ(host.Run({}), Lv2Events());
    EXPECT_EQ(host.Run(Silence(64)), (Lv2Events{{0, off69}}));

    host.control[paramVelocity] = 0.5F;  // int(0.5 x 127) = 63
    host.control[paramChannel] = 1;      // the sixteenth
    host.control[paramInstrument] = 1;
    host.control[paramSendProgramChange] = 1;  // sends the program at once: 127, in two bytes
    const Lv2Events events = host.Run(Tones({69}, 0.5));
    ASSERT_FALSE(events.empty());
    EXPECT_EQ(events.back().data, std::string("\x9F\x45\x3F", 3));
    EXPECT_GE(std::count(events.begin(), events.end(), Lv2Event{0, std::string("\xCF\x7F", 2)}), 1);
    host.control[paramOutputToHost] = 0;
    EXPECT_EQ(host.Run(Tones({69}, 0.1)), (Lv2Events{{0, std::string("\x8F\x45\x00", 3)}}));
    EXPECT_EQ(host.Run(Tones({72}, 0.5)), Lv2Events());
}

TEST(Lv2Run, WorksWithoutConnectionsAtAnyRateAndNotWithoutAMap) {
    const LV2_Descriptor* const plugin = FileDescriptor();
    Lv2Host host(plugin);
    for (std::uint32_t port = 0; port < portCount + 1; ++port)
        plugin->connect_port(host.handle, port, nullptr);
    for (const std::uint32_t frames : {512U, 0U}) plugin->run(host.handle, frames);
    EXPECT_EQ(Lv2Host(plugin, Lv2Host::noMap).handle, nullptr);
    const Audio tone = Tones({69}, 0.5);
    for (const double rate : {0.0, 192000.0, std::nan("")}) {
        Lv2Host at(plugin, Lv2Host::everything, rate);
        ASSERT_NE(at.handle, nullptr) << rate;
        at.Run(tone);
        EXPECT_EQ(at.out, tone) << rate;
    }
}

// Hard-real-time: from the first run on, whatever its length, whatever ports change.
TEST(Lv2Run, AllocatesNothing) {
    Lv2Host host;  // linked here, where allocations are counted
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
}

// 8 bytes of body and 24 for each event: 16 for its head, 3 for the message, padded to a multiple of 8.
TEST(Lv2MidiPort, StaysWithinTheHostsBuffer) {
    std::uint64_t buffer[8] = {};
    auto& sequence = *reinterpret_cast<LV2_Atom_Sequence*>(buffer);
    MidiPort port(1, 2);
    port.Connect(&sequence);
    for (const std::uint32_t capacity : {8U + 24U + 23U, 7U}) {
        sequence.atom = {capacity, 0};
        port.Begin();
        EXPECT_EQ(port.Write(5, 0x644590), capacity > 8);
        EXPECT_FALSE(port.Write(6, 0x644590));
        EXPECT_EQ(EventsOf(sequence, 2).size(), capacity > 8 ? 1U : 0U);
    }
}

// MIDI devices are never opened by the thread of a run.
using Lv2Device = DeviceTest;
using Calls = FakeDevices::Calls;

TEST_F(Lv2Device, TheHostsWorkerOpensItAndTheNewestRequestWins) {
    Lv2Host host;
    host.control[paramDevice] = 0.01F;
    host.control[paramDeviceEnabled] = 1;
    host.refusesWork = true;  // such a host is asked again
    host.Run(Silence(64));
    host.refusesWork = false;
    host.Run(Silence(64));
    host.control[paramDevice] = 0.02F;
    host.Run(Silence(64));
    EXPECT_EQ(layer.Taken(), Calls());
    EXPECT_EQ(host.Work(), 2);
    EXPECT_EQ(layer.Taken(), Calls{"open 2"});
    host.control[paramDeviceEnabled] = 0;
    host.Run(Silence(64));
    host.Work();
    EXPECT_EQ(layer.Taken(), Calls{"close 1"});
}

TEST_F(Lv2Device, WithoutAWorkerAThreadOfItsOwnOpensIt) {
    std::promise<std::thread::id> opened;
    layer.during = [&opened, first = true](const std::string& call) mutable {
        if (call == "open 1" && std::exchange(first, false)) opened.set_value(std::this_thread::get_id());
    };
    {
        Lv2Host host(PluginDescriptor(), Lv2Host::noWorker);
        host.control[paramDevice] = 0.01F;
        host.control[paramDeviceEnabled] = 1;
        host.Run(Silence(64));
        EXPECT_TRUE(opened.get_future().get() != std::this_thread::get_id());
    }
    EXPECT_EQ(layer.Taken(), (Calls{"open 1", "close 1"}));  // with the instance
}

}  // namespace
