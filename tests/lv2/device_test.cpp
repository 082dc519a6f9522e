// Parameters 88 and 89: MIDI devices are never opened by the thread of a run.
#include <future>

#include "tests/delivery/midi_device_layer.h"
#include "tests/lv2/lv2_host.h"
#include "tests/plugin/messages.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class Lv2Device : public DeviceTest {
protected:
    // The devices that were opened and closed since the last question, without what was sent to them.
    FakeLayer::Calls Opened() {
        FakeLayer::Calls calls;
        for (const std::string& call : layer.Taken())
            if (call.rfind("open", 0) == 0 || call.rfind("close", 0) == 0) calls.push_back(call);
        return calls;
    }
    static constexpr float on = 1, off = 0;
    Messages messages;
};

TEST_F(Lv2Device, TheHostsWorkerOpensItAndTheNewestWishWins) {
    Lv2Host host;
    host.control[paramDevice] = 0.01F;
    host.control[paramDeviceEnabled] = on;
    host.Run(std::vector<float>(64));
    host.control[paramDevice] = 0.02F;
    host.Run(std::vector<float>(64));
    EXPECT_THAT(Opened(), IsEmpty());
    EXPECT_EQ(host.Work(), 2);
    EXPECT_THAT(Opened(), ElementsAre("open 2"));
    host.Run(std::vector<float>(64));
    EXPECT_EQ(host.Work(), 0);  // nothing has changed
    host.control[paramDeviceEnabled] = off;
    host.Run(std::vector<float>(64));
    host.Work();
    EXPECT_THAT(Opened(), ElementsAre("close 1"));
}

TEST_F(Lv2Device, AHostWhoseWorkerHasNoRoomIsAskedAgain) {
    Lv2Host host;
    host.refusesWork = true;
    host.control[paramDeviceEnabled] = on;
    host.Run({});
    host.refusesWork = false;
    EXPECT_EQ(host.asked, 0);
    host.Run({});
    host.Work();
    EXPECT_THAT(Opened(), ElementsAre("open 0"));
}

TEST_F(Lv2Device, WithoutAWorkerAThreadOfItsOwnOpensIt) {
    std::promise<std::thread::id> opened;
    layer.during = [&opened, first = true](const std::string& call) mutable {
        if (call == "open 1" && std::exchange(first, false)) opened.set_value(std::this_thread::get_id());
    };
    {
        Lv2Host host(PluginDescriptor(), Lv2Host::noWorker);
        host.control[paramDevice] = 0.01F;
        host.control[paramDeviceEnabled] = on;
        host.Run(std::vector<float>(64));
        EXPECT_TRUE(opened.get_future().get() != std::this_thread::get_id());
    }
    EXPECT_THAT(Opened(), ElementsAre("open 1", "close 1"));  // with the instance
}

// Without a window the port keeps the wish, and nobody is pestered about it.
TEST_F(Lv2Device, ADeviceThatIsNotToBeHadIsToldOnce) {
    layer.refusedOpens[0] = MMSYSERR_ALLOCATED;
    Lv2Host host;
    host.control[paramDeviceEnabled] = on;
    for (int i = 0; i < 100; ++i) {  // a second and more
        host.Run(std::vector<float>(1000));
        EXPECT_THAT(messages.shown, SizeIs(i == 0 ? 0 : 1));  // never from the run
        host.Work();
    }
    EXPECT_THAT(Opened(), ElementsAre("open 0"));
    layer.refusedOpens.clear();
    host.control[paramDeviceEnabled] = off;
    host.Run({});
    host.control[paramDeviceEnabled] = on;  // wished for anew
    host.Run({});
    host.Work();
    EXPECT_THAT(Opened(), ElementsAre("open 0"));
}

}  // namespace
