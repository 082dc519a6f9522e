#include "lv2/device_worker.h"

#include <bit>
#include <cstdint>
#include <utility>

namespace {

bool Same(std::int32_t index, float wish, float truth) {
    if (index == paramDeviceEnabled) return IsOn(wish) == IsOn(truth);
    return std::bit_cast<std::uint32_t>(wish) == std::bit_cast<std::uint32_t>(truth);
}

}  // namespace

OwnThread::OwnThread(std::function<void()> newWork) : work(std::move(newWork)) {
    sem_init(&calls, 0, 0);
    thread = std::thread([this] { Run(); });
}

OwnThread::~OwnThread() {
    ends = true;
    Wake();
    thread.join();
    sem_destroy(&calls);
}

void OwnThread::Run() {
    while (!ends) {
        if (sem_wait(&calls) == 0 && !ends) work();
    }
}

DeviceWorker::DeviceWorker(HostedObject& newObject, IFallBackListener& newListener,
                           const LV2_Worker_Schedule* hosts)
    : object(newObject), listener(newListener), schedule(hosts) {
    if (schedule == nullptr) own = std::make_unique<OwnThread>([this] { Work(); });
}

void DeviceWorker::Wish(std::int32_t index, float value) {
    fresh.post(index, value);
    unheard = true;
}

void DeviceWorker::Kick() {
    if (!unheard) return;
    if (schedule == nullptr) {
        own->Wake();
        unheard = false;
        return;
    }
    const std::uint32_t token = 0;  // the wishes are here; some hosts refuse work without content
    unheard = schedule->schedule_work(schedule->handle, sizeof token, &token) != LV2_WORKER_SUCCESS;
}

void DeviceWorker::Work() {
    fresh.drain([this](std::int32_t index, float value) {
        Note(index, value);
        // What is open already stays open: a port that comes back to the object's own value wants nothing.
        if (!Same(index, value, object.Get(index))) object.Set(index, value);
    });
    TellFallBacks();
}

void DeviceWorker::WishedInWindow(std::int32_t index, float value) {
    Note(index, value);
    TellFallBacks();
}

void DeviceWorker::Note(std::int32_t index, float value) {
    const std::lock_guard<std::mutex> held(guard);
    WishOf(index) = value;
}

// A wish that another thread is still fulfilling looks like one that failed; that thread puts it right when
// it comes here itself.
void DeviceWorker::TellFallBacks() {
    const std::lock_guard<std::mutex> held(guard);
    for (const std::int32_t index : {paramDevice, paramDeviceEnabled}) {
        const float truth = object.Get(index);
        if (!Same(index, WishOf(index), truth) && listener.FellBack(index, truth)) WishOf(index) = truth;
    }
}
