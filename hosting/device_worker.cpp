#include "hosting/device_worker.h"

#include <bit>
#include <cstdint>
#include <utility>

namespace {

bool Same(std::int32_t index, float requested, float actual) {
    if (index == paramDeviceEnabled) return IsOn(requested) == IsOn(actual);
    return std::bit_cast<std::uint32_t>(requested) == std::bit_cast<std::uint32_t>(actual);
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

DeviceWorker::DeviceWorker(HostedObject& newObject, IFallBackListener& newListener, Schedule newSchedule)
    : object(newObject), listener(newListener), schedule(std::move(newSchedule)) {
    if (!schedule) own = std::make_unique<OwnThread>([this] { Work(); });
}

void DeviceWorker::Request(std::int32_t index, float value) {
    fresh.post(index, value);
    if (own)
        own->Wake();
    else
        unheard = true;
}

void DeviceWorker::Kick() {
    if (unheard.exchange(false) && !schedule()) unheard = true;
}

void DeviceWorker::Work() {
    fresh.drain([this](std::int32_t index, float value) {
        Note(index, value);
        // What is open already stays open: a host that repeats the object's own value wants nothing.
        if (!Same(index, value, object.Parameter(index))) object.SetParameter(index, value);
    });
    ReportFallBacks();
}

void DeviceWorker::RequestedInWindow(std::int32_t index, float value) {
    Note(index, value);
    ReportFallBacks();
}

void DeviceWorker::Note(std::int32_t index, float value) {
    const Locked held(guard);
    Requested(index) = value;
}

// A request that another thread is still serving looks like one that failed; that thread corrects it when
// it comes here itself.
void DeviceWorker::ReportFallBacks() {
    for (const std::int32_t index : {paramDevice, paramDeviceEnabled}) {
        float actual = 0;
        {
            const Locked held(guard);
            actual = object.Parameter(index);
            if (Same(index, Requested(index), actual) || !listener.WantsFallBacks()) continue;
            Requested(index) = actual;
        }
        listener.FellBack(index, actual);
    }
}
