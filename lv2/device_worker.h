#pragma once
#include <semaphore.h>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

#include <lv2/worker/worker.h>

#include "editor/mailbox.h"
#include "lv2/hosted_object.h"
#include "plugin/parameter_table.h"

// Whom the worker tells that a device could not be had.
class IFallBackListener {
public:
    // The object has `value` for parameter `index`, other than was wished for. False when nobody wants to
    // know; the wish then stands. [any]
    virtual bool FellBack(std::int32_t index, float value) = 0;

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

    void Wake() { sem_post(&calls); }  // [audio]

private:
    void Run();

    const std::function<void()> work;
    sem_t calls;
    std::atomic<bool> ends{false};
    std::thread thread;  // last: it uses the others
};

// Parameters 88 and 89, the MIDI device: opening one takes its time, so a run only leaves its wish here, and
// the host's worker fulfils it, or a thread of our own. The newest wish wins.
//
// Threads: Wish and Kick [audio]; Work, on any one but the audio thread's unless the host means it to wait.
class DeviceWorker {
public:
    // `hosts` may be null; it outlives this otherwise.
    DeviceWorker(HostedObject& newObject, IFallBackListener& newListener, const LV2_Worker_Schedule* hosts);

    static bool Takes(std::int32_t index) { return index == paramDevice || index == paramDeviceEnabled; }

    void Wish(std::int32_t index, float value);  // [audio] from a port
    void Kick();                                 // [audio] once a run; a host that refuses is asked again
    void Work();
    void WishedInWindow(std::int32_t index, float value);  // [ui] the object has heard it already

private:
    void Note(std::int32_t index, float value);
    void TellFallBacks();
    float& WishOf(std::int32_t index) { return wishes[index - paramDevice]; }

    HostedObject& object;
    IFallBackListener& listener;
    const LV2_Worker_Schedule* const schedule;
    Mailbox fresh;         // wishes that no worker has seen yet
    bool unheard = false;  // some are, and nobody was asked; of the audio thread

    std::mutex guard;                // of `wishes`; held across no call into the object but to read a word
    float wishes[2] = {0, 0};        // the last of each; as the object begins
    std::unique_ptr<OwnThread> own;  // last: it uses the others
};
