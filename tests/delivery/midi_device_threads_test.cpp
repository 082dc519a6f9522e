// The port table under several threads. What the tests state holds in any build; the thread sanitizer says
// the rest. A lock held where none may be shows as a test that never ends.
#include <array>
#include <atomic>
#include <future>
#include <random>
#include <thread>

#include "delivery/midi_ports.h"
#include "tests/delivery/midi_device_layer.h"

namespace {

constexpr std::uint32_t noteOn = 0x643C90;

// Judges by atomics alone, so that it puts no order of its own between the threads. An open takes until the
// sending threads have sent a hundred messages more: if one of them waited for an open, neither would end.
class JudgingLayer : public MidiOutDevices {
public:
    static constexpr std::size_t deviceCount = 4;

    std::uint32_t midiOutGetNumDevs() override { return deviceCount; }
    std::uint32_t midiOutGetDevCapsW(std::uint32_t, MidiOutCaps&) override { return MMSYSERR_BADDEVICEID; }
    std::uint32_t midiOutOpen(MidiOutHandle& handle, std::uint32_t id) override {
        if (id >= deviceCount) return MMSYSERR_BADDEVICEID;
        if (openPerDevice[id].fetch_add(1) != 0) ++faults;  // opened twice
        for (const long enough = sent + 100; sendersRun && sent < enough;) std::this_thread::yield();
        ++opened;
        handle = (++lastHandle) * deviceCount + id;
        return MMSYSERR_NOERROR;
    }
    std::uint32_t midiOutClose(MidiOutHandle handle) override {
        for (const long enough = sent + 20; sendersRun && sent < enough;) std::this_thread::yield();
        if (openPerDevice[handle % deviceCount].fetch_sub(1) != 1) ++faults;
        ++closed;
        return MMSYSERR_NOERROR;
    }
    std::uint32_t midiOutShortMsg(MidiOutHandle, std::uint32_t message) override {
        if ((message & 0xF0U) != 0x80U && (message & 0xF0U) != 0x90U) ++faults;
        sent.fetch_add(1, std::memory_order_relaxed);
        return MMSYSERR_NOERROR;
    }
    std::uint32_t midiOutReset(MidiOutHandle) override { return MMSYSERR_NOERROR; }
    std::uint32_t midiOutLongMsg(MidiOutHandle, const MidiLongMessage&) override { return MMSYSERR_NOERROR; }
    std::uint32_t midiOutGetErrorTextW(std::uint32_t, MidiOutErrorTextW&) override {
        return MMSYSERR_NOERROR;
    }
    SystemVersion GetVersionExA() override { return {6, 2}; }

    std::array<std::atomic<int>, deviceCount> openPerDevice{};
    std::atomic<bool> sendersRun{false};
    std::atomic<long> sent{0}, opened{0}, closed{0};
    std::atomic<int> faults{0};
    std::atomic<MidiOutHandle> lastHandle{0};
};

TEST(PortThreads, SendsGoOnWhileOthersOpenAndClose) {
    JudgingLayer layer;
    SubstituteMidiOut(&layer);
    {
        MidiPortTable table;
        std::uint32_t own[2] = {};
        ASSERT_EQ(table.OpenPort(own[0], 0), MMSYSERR_NOERROR);
        ASSERT_EQ(table.OpenPort(own[1], 1), MMSYSERR_NOERROR);
        layer.sendersRun = true;
        std::atomic<int> faults{0};
        const auto audio = [&](std::uint32_t port, unsigned seed) {
            std::minstd_rand random(seed);
            for (int i = 0; layer.sendersRun; ++i) {
                if (table.SendShort(port, i % 2 == 0 ? noteOn : 0x3C80) != MMSYSERR_NOERROR) ++faults;
                table.SendShort(static_cast<std::uint32_t>(random() % 12),
                                noteOn);  // others' ports, and none
            }
        };
        const auto parameters = [&](unsigned seed) {
            std::minstd_rand random(seed);
            for (int i = 0; i < 40; ++i) {
                std::uint32_t ports[3] = {};
                for (std::uint32_t& port : ports) {
                    const auto device = static_cast<std::uint32_t>(random() % JudgingLayer::deviceCount);
                    if (table.OpenPort(port, device) != MMSYSERR_NOERROR) ++faults;
                }
                for (const std::uint32_t port : ports) table.ClosePort(port);
            }
        };
        std::thread threads[] = {std::thread(audio, own[0], 1), std::thread(audio, own[1], 2)};
        std::thread changing(parameters, 3);
        parameters(4);
        changing.join();
        layer.sendersRun = false;
        for (std::thread& thread : threads) thread.join();
        EXPECT_EQ(faults, 0);
        EXPECT_GE(layer.opened, 2);
        table.Unload();
    }
    EXPECT_EQ(layer.faults, 0);
    EXPECT_EQ(layer.opened, layer.closed);
    SubstituteMidiOut(nullptr);
}

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
    JudgingLayer layer;
    SubstituteMidiOut(&layer);
    MidiPortTable table;
    for (int round = 0; round < 300; ++round) {
        std::uint32_t mine = 0, theirs = 0;
        auto other = std::async(std::launch::async, [&] {
            const std::uint32_t result = table.OpenPort(theirs, 3);
            table.ClosePort(theirs);
            return result;
        });
        EXPECT_EQ(table.OpenPort(mine, 3), MMSYSERR_NOERROR);
        EXPECT_EQ(table.SendShort(mine, noteOn), MMSYSERR_NOERROR);
        EXPECT_EQ(other.get(), MMSYSERR_NOERROR);
        table.ClosePort(mine);
    }
    EXPECT_EQ(layer.faults, 0);
    EXPECT_EQ(layer.opened, layer.closed);
    SubstituteMidiOut(nullptr);
}

// An unload waits for the device that another thread is opening, and gives that back too.
TEST(PortThreads, AnUnloadMeetsAnOpenHalfWay) {
    FakeLayer layer;
    SubstituteMidiOut(&layer);
    MidiPortTable table;
    std::promise<void> opening;
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
