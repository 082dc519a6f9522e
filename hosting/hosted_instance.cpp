#include "hosting/hosted_instance.h"

#include <utility>

HostedInstance::HostedInstance(double rate, IInstanceListener& newListener, DeviceWorker::Schedule schedule)
    : listener(newListener), object(rate, *this), worker(object, *this, std::move(schedule)) {}

void HostedInstance::SetFromHost(std::int32_t index, float value) {
    if (DeviceWorker::Takes(index))
        worker.Request(index, value);
    else
        object.SetParameter(index, value);
}

void HostedInstance::ParameterEdited(std::int32_t index, float value) {
    if (index < 0 || index >= parameterCount) return;  // the window's own tags
    forHost.post(index, value);
    listener.ParameterEdited(index, value);
    if (DeviceWorker::Takes(index)) worker.RequestedInWindow(index, value);
}

// The request itself stays as it is until the host changes it, or a device that is not available would be
// asked for again and again.
void HostedInstance::FellBack(std::int32_t index, float value) {
    object.ShowInEditor(index, value);
    forHost.post(index, value);
    listener.FellBack(index, value);
}
