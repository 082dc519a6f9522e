// The devices of a JACK server, for real: a server with its dummy driver, a client that receives.
#include "devices/linux/jack_out.h"

#include <pthread.h>
#include <signal.h>

#include "base/wide_text.h"
#include "devices/system_midi_out.h"
#include "tests/support/jack_server.h"

namespace {

constexpr std::uint32_t noteOn = 0x643C90, noteOff = 0x003C80;

class JackDevices : public testing::Test {
protected:
    static std::vector<std::unique_ptr<MidiBackend>> Layer() {
        std::vector<std::unique_ptr<MidiBackend>> layers;
        layers.push_back(std::make_unique<JackBackend>());
        return layers;
    }
    MidiOutHandle Open() {
        devices.ReadDevices();
        MidiOutCaps caps;
        std::uint32_t id = 0;
        while (devices.midiOutGetDevCapsW(id, caps) == MMSYSERR_NOERROR &&
               WideCharToMultiByte(caps.name) != "receiver:in")
            ++id;
        MidiOutHandle handle = 0;
        EXPECT_EQ(devices.midiOutOpen(handle, id), MMSYSERR_NOERROR);
        return handle;
    }
    void Close(MidiOutHandle handle) { EXPECT_EQ(devices.midiOutClose(handle), MMSYSERR_NOERROR); }

    SystemMidiOut devices{Layer()};
};

bool BrokenPipesAreBlocked() {
    sigset_t blocked;
    pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
    return sigismember(&blocked, SIGPIPE) == 1;
}

TEST_F(JackDevices, CarryEachMessageInOrderUntilTheyAreClosed) {
    const JackServer server;
    std::optional<JackReceiver> receiver(std::in_place, "receiver");
    sigset_t none;  // the receiver's own client left a signal blocked
    sigemptyset(&none);
    pthread_sigmask(SIG_SETMASK, &none, nullptr);
    MidiOutHandle handle = Open();
    EXPECT_FALSE(BrokenPipesAreBlocked());  // as they were, although the library blocks them
    EXPECT_EQ(receiver->Senders(), std::vector<std::string>{"ORVA Audio To MIDI:out"});
    std::vector<std::uint32_t> sent;
    for (std::uint32_t i = 0; i < 3000; ++i) {  // more than one cycle carries, less than the ring
        sent.push_back(i % 10 == 9 ? 0xC0U | i % 128 << 8 : 0x640080U | i % 32 | (i / 16 % 128) << 8);
        ASSERT_EQ(devices.midiOutShortMsg(handle, sent[i]), MMSYSERR_NOERROR);
    }
    const std::vector<std::uint8_t> exclusive(1 << 20, 0x11);
    for (const std::size_t length : {5000U, 1U << 20})  // larger than any buffer: it holds nothing up
        EXPECT_EQ(devices.midiOutLongMsg(handle, {exclusive.data(), length}), MMSYSERR_NOERROR);
    EXPECT_EQ(devices.midiOutShortMsg(handle, noteOff), MMSYSERR_NOERROR);
    Close(handle);  // what is sent before a close still arrives
    EXPECT_FALSE(BrokenPipesAreBlocked());
    EXPECT_TRUE(receiver->Senders().empty());
    ASSERT_TRUE(AwaitThat([&] { return receiver->Count() == 3002; }));
    for (std::size_t i = 0; i < 3000; ++i) ASSERT_EQ(receiver->At(i), sent[i]) << i;
    EXPECT_EQ(receiver->EventAt(9).size, 2U);
    EXPECT_EQ(receiver->EventAt(3000).size, 5000U);
    EXPECT_EQ(receiver->At(3001), noteOff);
    receiver.reset();  // gone since it was listed
    EXPECT_EQ(devices.midiOutOpen(handle, 0), MMSYSERR_BADDEVICEID);
}

TEST_F(JackDevices, NeverWaitForAServerThatHasDiedOrWasNeverThere) {
    testing::internal::CaptureStderr();
    setenv("JACK_DEFAULT_SERVER", "orva-no-such-server", 1);
    MidiOutHandle handle = 0;
    EXPECT_EQ(devices.midiOutGetNumDevs(), 0U);
    EXPECT_EQ(JackBackend().Open("nobody:in").code, MMSYSERR_BADDEVICEID);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");

    JackServer server;
    std::optional<JackReceiver> receiver(std::in_place, "receiver");
    handle = Open();
    server.Die();
    std::uint32_t last = MMSYSERR_NOERROR;
    for (int i = 0; i < 20000; ++i) last = devices.midiOutShortMsg(handle, i % 2 == 0 ? noteOff : noteOn);
    EXPECT_EQ(last, MMSYSERR_ERROR);
    receiver.reset();
    devices.ReadDevices();  // the library frees all clients of the dead server here, and only then we close
    Close(handle);
    devices.ReadDevices();
    EXPECT_EQ(devices.midiOutGetNumDevs(), 0U);

    server.Start();  // and everything goes on
    receiver.emplace("receiver");
    devices.ReadDevices();
    handle = Open();
    EXPECT_EQ(devices.midiOutShortMsg(handle, noteOn), MMSYSERR_NOERROR);
    EXPECT_TRUE(AwaitThat([&] { return receiver->Count() == 1; }));
    Close(handle);
}

}  // namespace
