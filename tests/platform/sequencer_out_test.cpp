// The devices of the ALSA sequencer, through RtMidi, with a sequencer of our own in the place of the
// system's.
#include "platform/sequencer_out.h"

#include <cerrno>
#include <thread>
#include <utility>

#include "gmock/gmock.h"
#include "tests/platform/fake_sequencer.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class SequencerDevices : public testing::Test {
protected:
    SequencerDevices() {
        Sequencer().ports = {
            {14, 0, "Midi Through", "Midi Through Port-0"}, {128, 0, "Synth", "in"}, {128, 1, "Synth", "in"}};
    }
    ~SequencerDevices() override {
        EXPECT_EQ(Sequencer().opened, Sequencer().closed) << "a client was left open";
        EXPECT_EQ(Sequencer().collisions, 0);
        FakeSequencer& sequencer = Sequencer();
        sequencer.openResult = sequencer.subscribeResult = 0;
        sequencer.outputResult = 0;
        sequencer.together = 0;
        sequencer.words.clear();
        sequencer.clientNames.clear();
    }
    std::unique_ptr<MidiDevice> Open(const std::string& name) {
        MidiOpening opening = backend.Open(name);
        EXPECT_EQ(opening.code, MMSYSERR_NOERROR) << opening.text;
        return std::move(opening.device);
    }
    static std::uint32_t Send(MidiDevice& device, std::uint32_t message) {
        return device.Send(message, ShortMessageLength(message));
    }
    SequencerBackend backend{"/dev/null"};  // a node that is there
};

TEST_F(SequencerDevices, AreListedAndOpenedByNameAndAddress) {
    EXPECT_THAT(backend.DeviceNames(),
                ElementsAre("Midi Through:Midi Through Port-0 14:0", "Synth:in 128:0", "Synth:in 128:1"));
    Sequencer().ports.erase(Sequencer().ports.begin());  // numbers move, the address does not
    Sequencer().clientNames.clear();
    const auto device = Open("Synth:in 128:1");
    EXPECT_EQ(Sequencer().subscribed, "128:1");
    EXPECT_EQ(Sequencer().clientNames, "ORVA Audio To MIDI;");  // one client for the device
}

TEST_F(SequencerDevices, TakeMessagesAsTheyAre) {
    const auto device = Open("Synth:in 128:0");
    for (const std::uint32_t word : {0x643C90U, 0x003C80U, 0x643D90U, 0x7F07B3U, 0x0005CFU})
        EXPECT_EQ(Send(*device, word), MMSYSERR_NOERROR);
    std::vector<std::uint8_t> exclusive(1002, 0x11);
    exclusive.front() = 0xF0;
    exclusive.back() = 0xF7;
    EXPECT_EQ(device->SendLong({exclusive.data(), exclusive.size()}), MMSYSERR_NOERROR);
    EXPECT_THAT(Sequencer().words, ElementsAre(0x643C90, 0x003C80, 0x643D90, 0x7F07B3, 0x0005CF, 1002));
}

TEST_F(SequencerDevices, ErrorsAreCodesAndNobodyHearsOfThem) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(backend.Open("Synth:in 9:9").code, MMSYSERR_BADDEVICEID);  // has gone since it was listed
    Sequencer().subscribeResult = -EBUSY;
    const MidiOpening busy = backend.Open("Synth:in 128:0");
    EXPECT_EQ(busy.code, MMSYSERR_ALLOCATED);
    EXPECT_THAT(busy.text, testing::HasSubstr("connection"));  // the library's words
    EXPECT_EQ(busy.device, nullptr);
    Sequencer().subscribeResult = 0;
    {
        const auto device = Open("Synth:in 128:0");
        Sequencer().outputResult = -EAGAIN;  // the queue is full
        EXPECT_EQ(Send(*device, 0x643C90), MMSYSERR_ERROR);
        Sequencer().together = 0;  // the library does not go on to send
        Sequencer().outputResult = 0;
        EXPECT_EQ(Send(*device, 0x643C90), MMSYSERR_NOERROR);
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    Sequencer().ports.clear();
    EXPECT_THAT(backend.DeviceNames(), IsEmpty());
    Sequencer().openResult = -ENOMEM;  // here the library itself speaks: no client, no listener
    EXPECT_THAT(backend.DeviceNames(), IsEmpty());
    EXPECT_EQ(backend.Open("Synth:in 128:0").code, MMSYSERR_ALLOCATED);
}

TEST_F(SequencerDevices, WithoutASequencerThereAreNone) {
    testing::internal::CaptureStderr();
    SequencerBackend absent("/dev/no sequencer");
    EXPECT_THAT(absent.DeviceNames(), IsEmpty());
    EXPECT_EQ(absent.Open("Synth:in 128:0").code, MMSYSERR_BADDEVICEID);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

// Neither sender waits: whoever finds nobody sending sends for both, and none is left behind at the end.
TEST_F(SequencerDevices, SendersOfTwoInstancesNeverMeetInTheLibraryAndEachKeepsItsOrder) {
    std::atomic<std::size_t> refused{0};
    constexpr std::uint32_t messages = 128 * 128;  // each numbered by its data
    const auto device = Open("Synth:in 128:0");
    const auto play = [&](std::uint32_t status) {
        for (std::uint32_t i = 0; i < messages; ++i)
            if (Send(*device, status | i % 128 << 8 | i / 128 << 16) != MMSYSERR_NOERROR) ++refused;
    };
    std::thread other(play, 0xB1);
    play(0xB0);
    other.join();
    const std::vector<std::uint32_t>& words = Sequencer().words;
    EXPECT_EQ(words.size() + refused, 2 * messages);  // none was lost on the way
    int last[2] = {-1, -1};
    for (const std::uint32_t word : words) {
        const int number = static_cast<int>((word >> 8 & 127U) + 128 * (word >> 16));
        ASSERT_GT(number, std::exchange(last[word & 1U], number));
    }
    const std::uint8_t exclusive[] = {0xF0, 1, 2, 0xF7};
    EXPECT_EQ(device->SendLong({exclusive, 4}), MMSYSERR_NOERROR);
    EXPECT_EQ(words.back(), 4U);
}

}  // namespace
