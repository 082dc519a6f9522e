#include "hosting/hosted_instance.h"

#include <algorithm>
#include <utility>

HostedInstance::HostedInstance(double rate, IInstanceListener& newListener, DeviceWorker::Schedule schedule)
    : listener(newListener), object(rate, *this), worker(object, *this, std::move(schedule)) {}

void HostedInstance::SetFromHost(std::int32_t index, float value) {
    if (DeviceWorker::Takes(index))
        worker.Request(index, value);
    else
        object.SetParameter(index, value);
}

void HostedInstance::Process(const float* in, float* out) {
    worker.Kick();
    for (std::uint32_t done = 0; done < frames;) {
        const std::uint32_t block = std::min(frames - done, HostedObject::longestBlock);
        gatherer.BeginBlock(done);
        object.Process(in != nullptr ? in + done : nullptr, out != nullptr ? out + done : nullptr, block);
        done += block;
    }
}

void HostedInstance::ParameterEdited(std::int32_t index, float value) {
    if (index < 0 || index >= parameterCount) return;  // the window's own tags
    listener.ParameterEdited(index, value);
    forHost.post(index, value);
    if (DeviceWorker::Takes(index)) worker.RequestedInWindow(index, value);
}

// The request itself stays as it is until the host changes it, or a device that is not available would be
// asked for again and again.
bool HostedInstance::FellBack(std::int32_t index, float value) {
    if (!listener.FellBack(index, value)) return false;
    object.ShowInEditor(index, value);
    forHost.post(index, value);
    return true;
}
