// The devices of a JACK server, for real: a server with its dummy driver, a client that receives.
#include "devices/linux/jack_out.h"

#include <gmock/gmock.h>
#include <pthread.h>
#include <signal.h>

#include "tests/devices/open_device.h"
#include "tests/support/jack_server.h"

namespace {

constexpr std::uint32_t noteOn = 0x643C90, noteOff = 0x003C80;

bool BrokenPipesAreBlocked() {
    sigset_t blocked;
    pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
    return sigismember(&blocked, SIGPIPE) == 1;
}

TEST(JackDevices, CarryEachMessageInOrderUntilTheyAreClosed) {
    const JackServer server;
    std::optional<JackReceiver> receiver(std::in_place, "receiver");
    sigset_t none;  // the receiver's own client left a signal blocked
    sigemptyset(&none);
    pthread_sigmask(SIG_SETMASK, &none, nullptr);
    JackBackend backend;
    EXPECT_THAT(backend.DeviceNames(), testing::Contains("receiver:in"));
    auto device = OpenDevice(backend, "receiver:in");
    EXPECT_FALSE(BrokenPipesAreBlocked());  // as they were, although the library blocks them
    EXPECT_EQ(receiver->Senders(), std::vector<std::string>{"ORVA Audio To MIDI:out"});
    std::vector<std::uint32_t> sent;
    for (std::uint32_t i = 0; i < 3000; ++i) {  // more than one cycle carries, less than the ring
        sent.push_back(i % 10 == 9 ? 0xC0U | i % 128 << 8 : 0x640080U | i % 32 | (i / 16 % 128) << 8);
        ASSERT_EQ(Send(*device, sent[i]), MMSYSERR_NOERROR);
    }
    const std::vector<std::uint8_t> exclusive(1 << 20, 0x11);
    for (const std::size_t length : {5000U, 1U << 20})  // larger than any buffer: it holds nothing up
        EXPECT_EQ(device->SendLong({exclusive.data(), length}), MMSYSERR_NOERROR);
    EXPECT_EQ(Send(*device, noteOff), MMSYSERR_NOERROR);
    device.reset();  // what is sent before a close still arrives
    EXPECT_FALSE(BrokenPipesAreBlocked());
    EXPECT_TRUE(receiver->Senders().empty());
    ASSERT_TRUE(AwaitThat([&] { return receiver->Count() == 3002; }));
    for (std::size_t i = 0; i < 3000; ++i) ASSERT_EQ(receiver->At(i), sent[i]) << i;
    EXPECT_EQ(receiver->EventAt(9).size, 2U);
    EXPECT_EQ(receiver->EventAt(3000).size, 5000U);
    EXPECT_EQ(receiver->At(3001), noteOff);
    receiver.reset();  // gone since it was listed
    EXPECT_EQ(backend.Open("receiver:in").code, MMSYSERR_BADDEVICEID);
}

TEST(JackDevices, NeverWaitForAServerThatHasDiedOrWasNeverThere) {
    testing::internal::CaptureStderr();
    setenv("JACK_DEFAULT_SERVER", "orva-no-such-server", 1);
    JackBackend backend;
    EXPECT_TRUE(backend.DeviceNames().empty());
    EXPECT_EQ(backend.Open("nobody:in").code, MMSYSERR_BADDEVICEID);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");

    JackServer server;
    std::optional<JackReceiver> receiver(std::in_place, "receiver");
    auto device = OpenDevice(backend, "receiver:in");
    server.Die();
    std::uint32_t last = MMSYSERR_NOERROR;
    for (int i = 0; i < 20000; ++i) last = Send(*device, i % 2 == 0 ? noteOff : noteOn);
    EXPECT_EQ(last, MMSYSERR_ERROR);
    receiver.reset();
    backend.DeviceNames();  // the library frees all clients of the dead server here, and only then we close
    device.reset();
    EXPECT_TRUE(backend.DeviceNames().empty());

    server.Start();  // and everything goes on
    receiver.emplace("receiver");
    device = OpenDevice(backend, "receiver:in");
    EXPECT_EQ(Send(*device, noteOn), MMSYSERR_NOERROR);
    EXPECT_TRUE(AwaitThat([&] { return receiver->Count() == 1; }));
}

}  // namespace
