#pragma once
#include <semaphore.h>

#include <atomic>
#include <functional>
#include <memory>
#include <thread>

#include "base/mutex.h"
#include "editor/mailbox.h"
#include "hosting/hosted_object.h"
#include "parameters/parameters.h"

// Is notified when a device is not available.
class IFallBackListener {
public:
    // Whether anybody wants to know; otherwise the request stands. Not the place to call a host. [any]
    virtual bool WantsFallBacks() = 0;
    // The object has `value` for parameter `index`, other than was requested. [any]
    virtual void FellBack(std::int32_t index, float value) = 0;

protected:
    ~IFallBackListener() = default;
};

// A thread of our own, for hosts that lend none. It does `work` once or more after each Wake.
class OwnThread {
public:
    explicit OwnThread(std::function<void()> newWork);
    ~OwnThread();  // waits for the work in progress
    OwnThread(const OwnThread&) = delete;
    OwnThread& operator=(const OwnThread&) = delete;

    void Wake() { sem_post(&calls); }  // [any]

private:
    void Run();

    const std::function<void()> work;
    sem_t calls;
    std::atomic<bool> ends{false};
    std::thread thread;  // last: it uses the others
};

// Parameters 88 and 89, the MIDI device: opening one takes its time, so a run only leaves its request here,
// and the host's worker serves it, or a thread of our own. The newest request wins.
//
// Threads: Work, on any one but the audio thread's unless the host means it to wait.
class DeviceWorker {
public:
    // Asks the host to call Work on a thread of its own; false when it has to be asked again. [audio]
    using Schedule = std::function<bool()>;

    // An empty schedule stands for a host that lends no thread.
    DeviceWorker(HostedObject& newObject, IFallBackListener& newListener, Schedule newSchedule);

    static bool Takes(std::int32_t index) { return index == paramDevice || index == paramDeviceEnabled; }

    void Request(std::int32_t index, float value);  // [any] nobody waits
    void Kick();                                    // [audio] once a run; a host that refuses is asked again
    void Work();
    void RequestedInWindow(std::int32_t index, float value);  // [ui] the object has applied it already

private:
    void Note(std::int32_t index, float value);
    void ReportFallBacks();
    float& Requested(std::int32_t index) REQUIRES(guard) { return requested[index - paramDevice]; }

    HostedObject& object;
    IFallBackListener& listener;
    const Schedule schedule;
    Mailbox fresh;                      // requests that no worker has seen yet
    std::atomic<bool> unheard = false;  // some are, and nobody was asked

    Mutex guard;  // held across no call into object or host but to read a word
    float requested[2] GUARDED_BY(guard) = {0, 0};  // the last of each; as the object begins
    std::unique_ptr<OwnThread> own;                 // last: it uses the others
};
