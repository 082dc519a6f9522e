// Parameters 88 and 89: MIDI devices are never opened by the thread of a run.
#include <future>
#include <thread>

#include "tests/lv2/lv2_host.h"
#include "tests/support/devices.h"
#include "tests/support/messages.h"
#include "tests/support/music.h"

namespace {

class Lv2Device : public DeviceTest {
protected:
    using Calls = FakeDevices::Calls;
    Calls Opened() {  // and closed, since it was asked last
        Calls calls = layer.Taken();
        std::erase_if(calls, [](const std::string& call) { return call[0] != 'o' && call[0] != 'c'; });
        return calls;
    }
    Messages messages;
};

TEST_F(Lv2Device, TheHostsWorkerOpensItAndTheNewestRequestWins) {
    Lv2Host host;
    host.refusesWork = true;  // such a host is asked again
    host.control[paramDevice] = 0.01F;
    host.control[paramDeviceEnabled] = 1;
    host.Run(Silence(64));
    host.refusesWork = false;
    EXPECT_EQ(host.asked, 0);
    host.Run(Silence(64));
    host.control[paramDevice] = 0.02F;
    host.Run(Silence(64));
    EXPECT_EQ(Opened(), Calls());
    EXPECT_EQ(host.Work(), 2);
    EXPECT_EQ(Opened(), Calls{"open 2"});
    host.Run(Silence(64));
    EXPECT_EQ(host.Work(), 0);  // nothing has changed
    host.control[paramDeviceEnabled] = 0;
    host.Run(Silence(64));
    host.Work();
    EXPECT_EQ(Opened(), Calls{"close 1"});
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
    EXPECT_EQ(Opened(), (Calls{"open 1", "close 1"}));  // with the instance
}

// Without a window the port keeps the request, and the user hears of it once.
TEST_F(Lv2Device, ADeviceThatIsNotAvailableIsReportedOnce) {
    layer.refusedOpens[0] = MMSYSERR_ALLOCATED;
    Lv2Host host;
    host.control[paramDeviceEnabled] = 1;
    for (int i = 0; i < 100; ++i) {  // a second and more
        host.Run(Silence(1000));
        EXPECT_EQ(messages.shown.size(), i == 0 ? 0U : 1U);  // never from the run
        host.Work();
    }
    EXPECT_EQ(Opened(), Calls{"open 0"});
}

}  // namespace
