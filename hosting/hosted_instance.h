#pragma once
#include <algorithm>
#include <cstdint>

#include "editor/mailbox.h"
#include "hosting/device_worker.h"
#include "hosting/event_gatherer.h"
#include "hosting/hosted_object.h"

// Is notified of changes that did not come from the host.
class IInstanceListener : public IFallBackListener {
public:
    virtual void ParameterEdited(std::int32_t index, float value) = 0;  // [ui] in the window; 0 to 95

protected:
    ~IInstanceListener() = default;
};

// One instance of the plug-in behind any face: the object, its events gathered into the host's runs, MIDI
// devices opened away from the audio thread, and changes from the window on their way to the host.
//
// A run on the audio thread is BeginRun, changes of parameters, Process and EndRun, with no allocation or
// wait in it; Resume and Suspend never come beside one.
class HostedInstance final : private IObjectListener, private IFallBackListener {
public:
    HostedInstance(double rate, IInstanceListener& newListener, DeviceWorker::Schedule schedule = {});
    HostedInstance(const HostedInstance&) = delete;
    HostedInstance& operator=(const HostedInstance&) = delete;

    void Resume() { object.Resume(); }
    void Suspend() { object.Suspend(); }

    void BeginRun(std::uint32_t newFrames) {  // [audio]
        frames = newFrames;
        gatherer.BeginRun(frames);
    }
    // [any] A parameter, from the host; a device's is set a little later.
    void SetFromHost(std::int32_t index, float value);
    // [audio] All frames of the run, float or double; pointers may be null.
    template <typename Sample>
    void Process(const Sample* in, Sample* out) {
        worker.Kick();
        for (std::uint32_t done = 0; done < frames;) {
            const std::uint32_t block = std::min(frames - done, HostedObject::longestBlock);
            gatherer.BeginBlock(done);
            object.Process(in != nullptr ? in + done : nullptr, out != nullptr ? out + done : nullptr, block);
            done += block;
        }
    }
    // [audio] `write` gets frame and message of each event, and returns false when the host has no space.
    template <typename Write>
    void EndRun(Write write) {
        gatherer.EndRun(write);
    }
    void Work() { worker.Work(); }  // what a schedule asked for

    HostedObject& Object() { return object; }
    // Made in the window, or by a device that was not available.
    Mailbox& ChangesForHost() { return forHost; }

private:
    void EventsSent(const VstEvents& events) override { gatherer.Take(events); }
    void ParameterEdited(std::int32_t index, float value) override;
    bool WantsFallBacks() override { return listener.WantsFallBacks(); }
    void FellBack(std::int32_t index, float value) override;

    IInstanceListener& listener;
    std::uint32_t frames = 0;  // of the run
    Mailbox forHost;
    EventGatherer gatherer;
    HostedObject object;  // calls back into what stands above
    DeviceWorker worker;  // last: it may have a thread
};
