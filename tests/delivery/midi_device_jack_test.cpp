// From recorders to a real JACK server, through the device output.
#include <memory>

#include "delivery/midi_device_list.h"
#include "delivery/midi_ports.h"
#include "delivery/rt_midi_out.h"
#include "platform/midi_out_devices.h"
#include "tests/delivery/fakes.h"
#include "tests/platform/jack_server.h"

namespace {

using testing::ElementsAre;

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
    EXPECT_THAT(receiver.Senders(), ElementsAre("ORVA Audio To MIDI:out"));  // one client for both
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
