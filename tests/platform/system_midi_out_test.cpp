// The list and the handles of the system's devices, on layers of fake devices.
#include "platform/system_midi_out.h"

#include <atomic>
#include <functional>
#include <thread>

#include "gmock/gmock.h"
#include "platform/wide_text.h"

namespace {

using testing::ElementsAre;
using Words = std::vector<std::uint32_t>;

// What a layer has and did, shared with the test: the layer itself belongs to the devices.
struct Desk {
    explicit Desk(std::vector<std::string> has) : names(std::move(has)) {}
    std::vector<std::string> names;
    std::vector<std::string> opened;
    MidiOpening refusal;  // with a code: the answer to every opening
    int closed = 0;
    Words sent;
    int longBytes = 0;
    std::function<void(const bool& open)> inSend;  // where there is one, nothing is kept of what is sent
};

class FakeDevice : public MidiDevice {
public:
    explicit FakeDevice(Desk& on) : desk(on) {}
    ~FakeDevice() override { open = false, ++desk.closed; }
    std::uint32_t Send(std::uint32_t message, std::size_t) override {
        if (desk.inSend)
            desk.inSend(open);
        else
            desk.sent.push_back(message);
        return MMSYSERR_NOERROR;
    }
    std::uint32_t SendLong(const MidiLongMessage& message) override {
        desk.longBytes += static_cast<int>(message.length);
        return MMSYSERR_NOERROR;
    }

private:
    Desk& desk;
    bool open = true;
};

class FakeBackend : public MidiBackend {
public:
    explicit FakeBackend(Desk& on) : desk(on) {}
    std::vector<std::string> DeviceNames() override { return desk.names; }
    MidiOpening Open(const std::string& name) override {
        desk.opened.push_back(name);
        if (desk.refusal.code != MMSYSERR_NOERROR) return {nullptr, desk.refusal.code, desk.refusal.text};
        return {std::make_unique<FakeDevice>(desk)};
    }

private:
    Desk& desk;
};

class SystemDevices : public testing::Test {
protected:
    std::vector<std::unique_ptr<MidiBackend>> Layers() {
        std::vector<std::unique_ptr<MidiBackend>> layers;
        layers.push_back(std::make_unique<FakeBackend>(first));
        layers.push_back(std::make_unique<FakeBackend>(second));
        return layers;
    }
    std::string Name(std::uint32_t id) {
        MidiOutCaps caps;
        return devices.midiOutGetDevCapsW(id, caps) == MMSYSERR_NOERROR ? WideCharToMultiByte(caps.name)
                                                                        : "-";
    }
    std::vector<std::string> Names() {
        std::vector<std::string> names;
        for (std::uint32_t id = 0; id < devices.midiOutGetNumDevs(); ++id) names.push_back(Name(id));
        return names;
    }
    std::string Text(std::uint32_t code) {
        MidiOutErrorTextW text;
        return devices.midiOutGetErrorTextW(code, text) == MMSYSERR_NOERROR ? WideCharToMultiByte(text.text)
                                                                            : "-";
    }
    MidiOutHandle Open(std::uint32_t id) {
        MidiOutHandle handle = 0;
        EXPECT_EQ(devices.midiOutOpen(handle, id), MMSYSERR_NOERROR);
        return handle;
    }

    Desk first{{"a", "b"}}, second{{"b", "c"}};
    SystemMidiOut devices{Layers()};
    MidiOutHandle unused = 0;
};

TEST_F(SystemDevices, TheListIsReadOnceAndWhenItIsAskedFor) {
    EXPECT_THAT(Names(), ElementsAre("a", "b", "b (2)", "c"));
    first.names = {"z"};
    second.names = {};
    EXPECT_THAT(Names(), ElementsAre("a", "b", "b (2)", "c"));
    devices.ReadDevices();
    EXPECT_THAT(Names(), ElementsAre("z"));
    EXPECT_EQ(Name(1), "-");
    first.names = {};
    devices.ReadDevices();
    EXPECT_EQ(devices.midiOutGetNumDevs(), 0U);  // no layer present: no error, no devices
    EXPECT_EQ(devices.midiOutOpen(unused, 0), MMSYSERR_BADDEVICEID);
}

TEST_F(SystemDevices, AnIdOpensTheDeviceThatItWasShownFor) {
    Names();
    first.names = {"new", "b"};  // "a" has gone, and what came stands in its place
    EXPECT_EQ(devices.midiOutOpen(unused, 0), MMSYSERR_BADDEVICEID);
    devices.midiOutClose(Open(1));
    EXPECT_THAT(first.opened, ElementsAre("b"));
    EXPECT_THAT(Names(), ElementsAre("-", "b", "b (2)", "c", "new"));
    devices.midiOutClose(Open(4));
    devices.ReadDevices();  // nothing is open: as the layers have it
    EXPECT_THAT(Names(), ElementsAre("new", "b", "b (2)", "c"));
}

TEST_F(SystemDevices, WhileOneIsOpenNoDeviceChangesItsId) {
    Names();
    const MidiOutHandle handle = Open(2);
    EXPECT_THAT(second.opened, ElementsAre("b"));
    first.names = {"new", "b"};
    second.names = {"c"};  // the open device itself has gone
    devices.ReadDevices();
    EXPECT_THAT(Names(), ElementsAre("new", "b", "-", "c"));
    EXPECT_EQ(devices.midiOutShortMsg(handle, 0x643C90), MMSYSERR_NOERROR);  // to a device that is no more
    second.names = {};
    devices.ReadDevices();
    EXPECT_THAT(Names(), ElementsAre("new", "b", "-"));  // kept as long as it is open
    devices.midiOutClose(handle);
    devices.ReadDevices();
    EXPECT_THAT(Names(), ElementsAre("new", "b"));
}

TEST_F(SystemDevices, OddNamesFitTheFieldAndAreLegal) {
    const std::string piano = "\xF0\x9F\x8E\xB9";  // two units
    first.names = {"", std::string(4096, 'x'), "cut \xC3", std::string(318, 'y') + piano, "\xFF"};
    second.names = {};
    EXPECT_THAT(Names(), ElementsAre("", std::string(319, 'x'), "cut \xEF\xBF\xBD", std::string(318, 'y'),
                                     "\xEF\xBF\xBD"));
    MidiOutHandle handle = Open(1);
    EXPECT_THAT(first.opened, ElementsAre(std::string(4096, 'x')));  // opened by its whole name
    devices.midiOutClose(handle);
}

// Two ports of one interface differ in their last letters; two too long or illegal names may not differ at
// all.
TEST_F(SystemDevices, EachHasAWholeNameOfItsOwn) {
    const std::string interface = "Studio Interface USB:Studio Interface USB MIDI ";
    first.names = {interface + "1 24:0", interface + "2 24:1", "\xFE", "\xFF"};
    second.names = {std::string(400, 'x') + "1", std::string(400, 'x') + "2"};
    EXPECT_THAT(Names(),
                ElementsAre(interface + "1 24:0", interface + "2 24:1", "\xEF\xBF\xBD", "\xEF\xBF\xBD (2)",
                            std::string(319, 'x'), std::string(315, 'x') + " (2)"));
}

TEST_F(SystemDevices, ALayersTextExplainsItsRefusal) {
    first.refusal.code = MMSYSERR_ALLOCATED;
    first.refusal.text = "the layer's own words";
    EXPECT_EQ(devices.midiOutOpen(unused, 0), MMSYSERR_ALLOCATED);
    EXPECT_EQ(Text(MMSYSERR_ALLOCATED), "the layer's own words");
    first.refusal.text = std::string(300, 'w');
    EXPECT_EQ(devices.midiOutOpen(unused, 0), MMSYSERR_ALLOCATED);
    EXPECT_EQ(Text(MMSYSERR_ALLOCATED), std::string(255, 'w'));
    first.refusal.text = "";
    EXPECT_EQ(devices.midiOutOpen(unused, 0), MMSYSERR_ALLOCATED);
    EXPECT_THAT(Text(MMSYSERR_ALLOCATED), testing::HasSubstr("in use"));  // ours again
    for (std::uint32_t code = 0; code <= 20; ++code) EXPECT_GT(Text(code).size(), 5U) << code;
    EXPECT_EQ(Text(21), "-");
}

TEST_F(SystemDevices, AClosedHandleIsRefusedForever) {
    const MidiOutHandle old = Open(0);
    EXPECT_EQ(devices.midiOutClose(old), MMSYSERR_NOERROR);
    const MidiOutHandle next = Open(0);
    const std::uint8_t bytes[] = {0xF0, 0xF7};
    for (const MidiOutHandle stale : {old, MidiOutHandle{0}, next + 1, ~MidiOutHandle{0}}) {
        EXPECT_EQ(devices.midiOutShortMsg(stale, 0x643C90), MMSYSERR_INVALHANDLE);
        EXPECT_EQ(devices.midiOutLongMsg(stale, {bytes, 2}), MMSYSERR_INVALHANDLE);
        EXPECT_EQ(devices.midiOutReset(stale), MMSYSERR_INVALHANDLE);
        EXPECT_EQ(devices.midiOutClose(stale), MMSYSERR_INVALHANDLE);
    }
    EXPECT_TRUE(first.sent.empty());
    EXPECT_EQ(devices.midiOutShortMsg(next, 0x643C90), MMSYSERR_NOERROR);
    EXPECT_EQ(devices.midiOutLongMsg(next, {bytes, 2}), MMSYSERR_NOERROR);
    EXPECT_EQ(devices.midiOutLongMsg(next, {nullptr, 0}), MMSYSERR_INVALPARAM);
    EXPECT_EQ(first.longBytes, 2);
    devices.midiOutClose(next);
    EXPECT_EQ(first.closed, 2);
}

TEST_F(SystemDevices, OneDeviceMoreThanThereIsRoomForIsRefused) {
    std::vector<MidiOutHandle> handles;
    for (std::size_t i = 0; i < SystemMidiOut::maxOpen; ++i) handles.push_back(Open(3));
    EXPECT_EQ(devices.midiOutOpen(unused, 3), MMSYSERR_NOMEM);
    devices.midiOutClose(handles[77]);
    handles[77] = Open(3);
    for (const MidiOutHandle handle : handles) EXPECT_EQ(devices.midiOutClose(handle), MMSYSERR_NOERROR);
}

TEST_F(SystemDevices, AResetEndsAllNotesAndPedals) {
    const MidiOutHandle handle = Open(0);
    devices.midiOutReset(handle);
    ASSERT_EQ(first.sent.size(), 32U);
    EXPECT_EQ(first.sent[0], 0x0040B0U);   // sustain pedal, channel 0
    EXPECT_EQ(first.sent[31], 0x007BBFU);  // all notes off, channel 15
    devices.midiOutClose(handle);
}

TEST(ShortMessages, HaveTheLengthOfTheirStatus) {
    struct Row {
        std::uint32_t message;
        std::size_t length;
    };
    const Row rows[] = {
        {0x643C90, 3}, {0x003C80, 3}, {0x0007BF, 3}, {0x0005C0, 2}, {0x0005D3, 2}, {0x4000E1, 3},
        {0x0000F8, 1}, {0x0012F2, 3}, {0x0003F3, 2}, {0xFF05C0, 2},  // what stands behind is not looked at
        {0x80FFFE, 1},                                               // nor here
        {0x643C00, 0}, {0x64907F, 0},                                // no status
        {0x0000F0, 0}, {0x0000F7, 0}, {0x0000F4, 0}, {0x0000FD, 0},  // no message by itself
        {0x64BC90, 0}, {0x803C90, 0}, {0x0085C0, 0},                 // data above 127
    };
    for (const Row& row : rows)
        EXPECT_EQ(ShortMessageLength(row.message), row.length) << std::hex << row.message;
}

// Sends and closes of one device by several threads: what reached the device did so while it was open.
TEST_F(SystemDevices, NoSendReachesADeviceThatIsBeingClosed) {
    std::atomic<int> faults{0};
    first.inSend = [&](const bool& open) {
        for (int turn = 0; turn < 20; ++turn) std::this_thread::yield();  // a close may fall into the middle
        if (!open) ++faults;
    };
    std::atomic<MidiOutHandle> current{0};
    std::atomic<bool> done{false};
    const auto send = [&] {
        while (!done) {
            const std::uint32_t result =
                devices.midiOutShortMsg(current.load(std::memory_order_relaxed), 0x643C90);
            if (result != MMSYSERR_NOERROR && result != MMSYSERR_INVALHANDLE) ++faults;
        }
    };
    std::thread one(send), two(send);
    for (int round = 0; round < 1000; ++round) {
        const MidiOutHandle handle = Open(0);
        current.store(handle, std::memory_order_relaxed);
        EXPECT_EQ(devices.midiOutClose(handle), MMSYSERR_NOERROR);
    }
    done = true;
    one.join();
    two.join();
    EXPECT_EQ(faults, 0);
}

}  // namespace
