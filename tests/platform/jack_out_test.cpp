// The devices of a JACK server, for real: a server with its dummy driver, a client that receives.
#include "platform/jack_out.h"

#include <pthread.h>
#include <signal.h>

#include <algorithm>
#include <thread>

#include "gmock/gmock.h"
#include "platform/system_midi_out.h"
#include "platform/wide_text.h"
#include "tests/platform/jack_server.h"

namespace {

using testing::Contains;
using testing::ElementsAre;

constexpr std::uint32_t noteOn = 0x643C90;
constexpr std::uint32_t noteOff = 0x003C80;

class JackDevices : public testing::Test {
protected:
    static std::vector<std::unique_ptr<MidiBackend>> Layers() {
        std::vector<std::unique_ptr<MidiBackend>> layers;
        layers.push_back(std::make_unique<JackBackend>());
        return layers;
    }
    std::vector<std::string> Names() {
        std::vector<std::string> names;
        MidiOutCaps caps;
        for (std::uint32_t id = 0; devices.midiOutGetDevCapsW(id, caps) == MMSYSERR_NOERROR; ++id)
            names.push_back(WideCharToMultiByte(caps.name));
        return names;
    }
    MidiOutHandle Open(const std::string& name) {
        const std::vector<std::string> names = Names();
        const auto found = std::find(names.begin(), names.end(), name);
        MidiOutHandle handle = 0;
        EXPECT_EQ(devices.midiOutOpen(handle, static_cast<std::uint32_t>(found - names.begin())),
                  MMSYSERR_NOERROR);
        return handle;
    }
    SystemMidiOut devices{Layers()};
};

TEST_F(JackDevices, WithoutAServerThereAreNoneAndNobodyHearsOfIt) {
    setenv("JACK_DEFAULT_SERVER", "orva-no-such-server", 1);
    testing::internal::CaptureStderr();
    EXPECT_EQ(devices.midiOutGetNumDevs(), 0U);
    MidiOutHandle handle = 0;
    EXPECT_EQ(devices.midiOutOpen(handle, 0), MMSYSERR_BADDEVICEID);
    EXPECT_EQ(JackBackend().Open("nobody:in").code, MMSYSERR_BADDEVICEID);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    unsetenv("JACK_DEFAULT_SERVER");
}

bool BrokenPipesAreBlocked() {
    sigset_t blocked;
    pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
    return sigismember(&blocked, SIGPIPE) == 1;
}

// The library blocks the signal of broken pipes on the thread that opens its first client; ours gives it
// back.
TEST_F(JackDevices, LeaveTheCallersSignalsAsTheyWere) {
    sigset_t pipe;
    sigemptyset(&pipe);
    sigaddset(&pipe, SIGPIPE);
    pthread_sigmask(SIG_UNBLOCK, &pipe, nullptr);
    setenv("JACK_DEFAULT_SERVER", "orva-no-such-server", 1);
    devices.ReadDevices();
    EXPECT_FALSE(BrokenPipesAreBlocked());
    const JackServer server;
    JackReceiver receiver("receiver");
    pthread_sigmask(SIG_UNBLOCK, &pipe, nullptr);  // the receiver's own client left it blocked
    const MidiOutHandle handle = Open("receiver:in");
    EXPECT_FALSE(BrokenPipesAreBlocked());
    EXPECT_EQ(devices.midiOutClose(handle), MMSYSERR_NOERROR);
    EXPECT_FALSE(BrokenPipesAreBlocked());
}

TEST_F(JackDevices, MessagesArriveInOrderAsTheyWereSent) {
    const JackServer server;
    JackReceiver receiver("receiver");
    const MidiOutHandle handle = Open("receiver:in");
    EXPECT_THAT(receiver.Senders(), ElementsAre("ORVA Audio To MIDI:out"));
    std::vector<std::uint32_t> sent;
    for (std::uint32_t i = 0; i < 3000; ++i) {  // more than one cycle carries, less than the ring
        const std::uint32_t word =
            i % 10 == 9 ? 0xC0U | i % 16 | i % 128 << 8 : 0x640080U | i % 32 | (i / 16 % 128) << 8;
        ASSERT_EQ(devices.midiOutShortMsg(handle, word), MMSYSERR_NOERROR);
        sent.push_back(word);
    }
    std::vector<std::uint8_t> exclusive(5000, 0x11);  // bytes
    exclusive.front() = 0xF0;
    exclusive.back() = 0xF7;
    EXPECT_EQ(devices.midiOutLongMsg(handle, {exclusive.data(), exclusive.size()}), MMSYSERR_NOERROR);
    exclusive.assign(1 << 20, 0x22);  // larger than any buffer: it is dropped, and holds nothing up
    EXPECT_EQ(devices.midiOutLongMsg(handle, {exclusive.data(), exclusive.size()}), MMSYSERR_NOERROR);
    EXPECT_EQ(devices.midiOutShortMsg(handle, noteOff), MMSYSERR_NOERROR);
    ASSERT_TRUE(receiver.Await(sent.size() + 2));
    for (std::size_t i = 0; i < sent.size(); ++i) ASSERT_EQ(receiver.At(i), sent[i]) << i;
    EXPECT_EQ(receiver.LengthAt(9), 2U);
    EXPECT_EQ(receiver.LengthAt(sent.size()), 5000U);
    EXPECT_EQ(receiver.At(sent.size() + 1), noteOff);
    EXPECT_EQ(devices.midiOutClose(handle), MMSYSERR_NOERROR);
    EXPECT_THAT(receiver.Senders(), testing::IsEmpty());
}

TEST_F(JackDevices, WhatWasSentBeforeACloseStillArrives) {
    const JackServer server;
    JackReceiver receiver("receiver");
    for (std::size_t round = 1; round <= 10; ++round) {
        const MidiOutHandle handle = Open("receiver:in");
        devices.midiOutShortMsg(handle, noteOn);
        devices.midiOutShortMsg(handle, noteOff);
        EXPECT_EQ(devices.midiOutClose(handle), MMSYSERR_NOERROR);
        ASSERT_TRUE(receiver.Await(2 * round));
        EXPECT_EQ(receiver.At(2 * round - 1), noteOff);
    }
}

TEST_F(JackDevices, TwoInstancesSendAtOnceEachInItsOrder) {
    const JackServer server;
    JackReceiver receiver("receiver");
    const MidiOutHandle handle = Open("receiver:in");
    constexpr std::uint32_t messages = 1500;  // together less than the ring
    std::atomic<int> refused{0};
    const auto play = [&](std::uint32_t channel) {
        for (std::uint32_t i = 0; i < messages; ++i)
            if (devices.midiOutShortMsg(handle, 0x90U | channel | i % 128 << 8 | i / 128 << 16) !=
                MMSYSERR_NOERROR)
                ++refused;
    };
    std::thread other(play, 1);
    play(0);
    other.join();
    EXPECT_EQ(refused, 0);
    ASSERT_TRUE(receiver.Await(2 * messages));
    std::uint32_t next[2] = {};
    for (std::size_t at = 0; at < 2 * messages; ++at) {
        const std::uint32_t word = receiver.At(at), channel = word & 15U;
        ASSERT_EQ((word >> 8 & 127U) + 128 * (word >> 16), next[channel]++) << "message " << at;
    }
    devices.midiOutClose(handle);
}

TEST_F(JackDevices, AServerThatDiesLeavesAWayThatRefuses) {
    JackServer server;
    MidiOutHandle handle = 0;
    {
        JackReceiver receiver("receiver");
        handle = Open("receiver:in");
        devices.midiOutShortMsg(handle, noteOn);
        ASSERT_TRUE(receiver.Await(1));
        server.Die();
        std::uint32_t last = MMSYSERR_NOERROR;
        for (int i = 0; i < 20000; ++i) last = devices.midiOutShortMsg(handle, i % 2 == 0 ? noteOff : noteOn);
        EXPECT_EQ(last, MMSYSERR_ERROR);  // each came back: the ring has room for 4096
    }
    EXPECT_EQ(devices.midiOutClose(handle), MMSYSERR_NOERROR);
    devices.ReadDevices();
    EXPECT_EQ(devices.midiOutGetNumDevs(), 0U);

    server.Start();  // and everything goes on
    JackReceiver receiver("receiver");
    devices.ReadDevices();
    handle = Open("receiver:in");
    EXPECT_EQ(devices.midiOutShortMsg(handle, noteOn), MMSYSERR_NOERROR);
    EXPECT_TRUE(receiver.Await(1));
    EXPECT_EQ(devices.midiOutClose(handle), MMSYSERR_NOERROR);
}

TEST_F(JackDevices, AServerThatStandsStillFillsTheRingAndNoMore) {
    JackServer server;
    JackReceiver receiver("receiver");
    const MidiOutHandle handle = Open("receiver:in");
    server.Freeze();
    std::size_t accepted = 0;
    for (std::uint32_t i = 0; i < 20000; ++i)
        if (devices.midiOutShortMsg(handle, 0x90U | i % 128 << 8) == MMSYSERR_NOERROR) ++accepted;
    EXPECT_LT(accepted, 20000U);
    EXPECT_GE(accepted, 4096U);
    server.Freeze(false);
    EXPECT_TRUE(receiver.Await(accepted));  // none that was taken is lost
    EXPECT_EQ(devices.midiOutShortMsg(handle, noteOff), MMSYSERR_NOERROR);
    EXPECT_EQ(devices.midiOutClose(handle), MMSYSERR_NOERROR);
}

TEST_F(JackDevices, AnInputThatHasGoneSinceItWasListedIsRefused) {
    const JackServer server;
    auto receiver = std::make_unique<JackReceiver>("receiver");
    EXPECT_THAT(Names(), Contains("receiver:in"));
    receiver.reset();
    MidiOutHandle handle = 0;
    EXPECT_EQ(devices.midiOutOpen(handle, 0), MMSYSERR_BADDEVICEID);
    EXPECT_EQ(JackBackend().Open("receiver:in").code,
              MMSYSERR_BADDEVICEID);  // between the list and the opening
}

}  // namespace
