// The list and the handles of the system's devices, on layers of fake devices.
#include "devices/system_midi_out.h"

#include "base/wide_text.h"
#include "tests/support/test.h"

namespace {

using NameList = std::vector<std::string>;

// A layer, and what it was asked to do.
struct Layer : MidiBackend {
    struct Device : MidiDevice {
        explicit Device(Layer& its) : layer(its) {}
        ~Device() override {
            ++layer.closed;
            if (layer.inside != 0) ++layer.faults;
        }
        std::uint32_t Send(std::uint32_t message, std::size_t) override {
            ++layer.inside;
            if (layer.keeps) layer.sent.push_back(message);
            for (int turn = 0; turn < 5; ++turn) std::this_thread::yield();  // a close may fall in here
            --layer.inside;
            return MMSYSERR_NOERROR;
        }
        std::uint32_t SendLong(const MidiLongMessage& message) override {
            layer.longBytes += message.length;
            return MMSYSERR_NOERROR;
        }
        Layer& layer;
    };
    explicit Layer(NameList listed) : names(std::move(listed)) {}
    NameList DeviceNames() override { return names; }
    MidiOpening Open(const std::string& name) override {
        opened.push_back(name);
        if (refusal != MMSYSERR_NOERROR) return {nullptr, refusal, "refused"};
        return {std::make_unique<Device>(*this)};
    }

    NameList names, opened;
    std::uint32_t refusal = MMSYSERR_NOERROR;  // the answer to every opening
    int closed = 0;
    bool keeps = true;  // what is sent
    std::vector<std::uint32_t> sent;
    std::size_t longBytes = 0;
    std::atomic<int> inside{0}, faults{0};  // sends under way; devices closed during one
};

class SystemDevices : public testing::Test {
protected:
    std::vector<std::unique_ptr<MidiBackend>> Layers() const {
        std::vector<std::unique_ptr<MidiBackend>> layers;
        for (Layer* const layer : {first, second}) layers.emplace_back(layer);
        return layers;
    }
    NameList Names() {  // "-" for a gap
        NameList names;
        MidiOutCaps caps;
        for (std::uint32_t id = 0; id < devices.midiOutGetNumDevs(); ++id)
            names.push_back(devices.midiOutGetDevCapsW(id, caps) == 0 ? WideCharToMultiByte(caps.name) : "-");
        EXPECT_EQ(devices.midiOutGetDevCapsW(devices.midiOutGetNumDevs(), caps), MMSYSERR_BADDEVICEID);
        return names;
    }
    NameList ReadNames() {
        devices.ReadDevices();
        return Names();
    }
    std::string Text(std::uint32_t code) {
        MidiOutErrorTextW text;
        return devices.midiOutGetErrorTextW(code, text) == 0 ? WideCharToMultiByte(text.text) : "-";
    }
    MidiOutHandle Open(std::uint32_t id, std::uint32_t result = MMSYSERR_NOERROR) {
        MidiOutHandle handle = 0;
        EXPECT_EQ(devices.midiOutOpen(handle, id), result);
        return handle;
    }
    void Close(MidiOutHandle handle) { EXPECT_EQ(devices.midiOutClose(handle), MMSYSERR_NOERROR); }

    Layer *const first = new Layer({"a", "b"}), *const second = new Layer({"b", "c"});  // the devices' own
    SystemMidiOut devices{Layers()};
};

TEST_F(SystemDevices, AnIdOpensTheDeviceThatTheListShowedUnderItOrNone) {
    EXPECT_EQ(Names(), (NameList{"a", "b", "b (2)", "c"}));
    first->names = {"new", "b"};                             // "a" has gone, and what came takes its place
    EXPECT_EQ(Names(), (NameList{"a", "b", "b (2)", "c"}));  // read once, and when it is asked for
    Open(0, MMSYSERR_BADDEVICEID);
    const MidiOutHandle handle = Open(2);
    EXPECT_EQ(second->opened, NameList{"b"});
    EXPECT_EQ(Names(), (NameList{"-", "b", "b (2)", "c", "new"}));
    second->names = {"c"};  // the open device itself has gone, and no other changes its id
    EXPECT_EQ(ReadNames(), (NameList{"-", "b", "-", "c", "new"}));
    EXPECT_EQ(devices.midiOutShortMsg(handle, 0x643C90), MMSYSERR_NOERROR);  // to a device that is no more
    Close(handle);
    first->names = {"cut \xC3", std::string(4096, 'x')};
    EXPECT_EQ(ReadNames(), (NameList{"cut \xEF\xBF\xBD", std::string(319, 'x'), "c"}));  // in order again
    Close(Open(1));
    EXPECT_EQ(first->opened, NameList{std::string(4096, 'x')});  // by its whole name
    first->refusal = MMSYSERR_ALLOCATED;
    Open(0, MMSYSERR_ALLOCATED);
    EXPECT_EQ(Text(MMSYSERR_ALLOCATED), "refused");  // the layer's own text
}

TEST_F(SystemDevices, AHandleServesUntilItIsClosedAndNeverAgain) {
    const MidiOutHandle old = Open(0);
    Close(old);
    const MidiOutHandle next = Open(0);
    const std::uint8_t bytes[] = {0xF0, 0xF7};
    for (const MidiOutHandle stale : {old, MidiOutHandle{0}, next + 1, ~MidiOutHandle{0}})
        for (const std::uint32_t result :
             {devices.midiOutShortMsg(stale, 0x643C90), devices.midiOutLongMsg(stale, {bytes, 2}),
              devices.midiOutReset(stale), devices.midiOutClose(stale)})
            EXPECT_EQ(result, MMSYSERR_INVALHANDLE) << stale;
    EXPECT_EQ(devices.midiOutShortMsg(next, 0x643C90), MMSYSERR_NOERROR);
    EXPECT_EQ(devices.midiOutShortMsg(next, 0x64903C), MMSYSERR_INVALPARAM);  // no status
    EXPECT_EQ(devices.midiOutLongMsg(next, {bytes, 2}), MMSYSERR_NOERROR);
    EXPECT_EQ(first->longBytes, 2U);
    EXPECT_EQ(devices.midiOutReset(next), MMSYSERR_NOERROR);
    ASSERT_EQ(first->sent.size(), 1U + 32U);
    EXPECT_EQ(first->sent[1], 0x0040B0U);   // sustain pedal, channel 0
    EXPECT_EQ(first->sent[32], 0x007BBFU);  // all notes off, channel 15
    Close(next);
    EXPECT_EQ(first->closed, 2);
}

TEST(ShortMessages, HaveTheLengthOfTheirStatus) {
    const std::pair<std::size_t, std::vector<std::uint32_t>> rows[] = {
        {1, {0x0000F8, 0x80FFFE}},
        {2, {0x0005C0, 0x0005D3, 0x0003F3, 0xFF05C0}},  // what follows is not looked at
        {3, {0x643C90, 0x4000E1, 0x0012F2}},
        // No status, no message by itself, or data above 127.
        {0, {0x643C00, 0x64907F, 0xF0, 0xF7, 0xF4, 0xFD, 0x64BC90, 0x803C90, 0x0085C0}},
    };
    for (const auto& [length, messages] : rows)
        for (const std::uint32_t message : messages)
            EXPECT_EQ(ShortMessageLength(message), length) << std::hex << message;
}

// Two threads send to one device while it is opened and closed: each message reaches it while it is open.
TEST_F(SystemDevices, NoSendReachesADeviceThatIsBeingClosed) {
    first->keeps = false;
    std::atomic<MidiOutHandle> current{0};
    std::atomic<bool> done{false};
    const auto send = [&] {
        while (!done) {
            const std::uint32_t result =
                devices.midiOutShortMsg(current.load(std::memory_order_relaxed), 0x90);
            if (result != MMSYSERR_NOERROR && result != MMSYSERR_INVALHANDLE) ++first->faults;
        }
    };
    std::thread one(send), two(send);
    for (int round = 0; round < 20; ++round) {
        const MidiOutHandle handle = Open(0);
        current.store(handle, std::memory_order_relaxed);
        while (first->inside == 0) std::this_thread::yield();
        Close(handle);
    }
    done = true;
    one.join();
    two.join();
    EXPECT_EQ(first->faults, 0);
}

}  // namespace
