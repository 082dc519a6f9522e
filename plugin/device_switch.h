#pragma once
#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

#include "base/mutex.h"
#include "base/relaxed.h"

class IMessageBox;
class TNoteRecorder;
class TRTMidiOut;

// What the device switch needs of the plug-in object.
class IDeviceSwitchOwner {
public:
    // The editor shall show `value` for parameter `index`: the device that is really open, or the switch off.
    virtual void DeviceFellBack(std::int32_t index, float value) = 0;
    // A device has just been opened, and shall hear the program and channel in force.
    virtual void DeviceOpened() = 0;

protected:
    ~IDeviceSwitchOwner() = default;
};

// Parameters 88 and 89: which MIDI device is requested, and whether it is open. A device that cannot be
// opened is reported in a message, and the request falls back to the device that was open, or to none.
//
// Threads: SetDevice and SetEnabled [any], though on the audio thread the opening of a device is heard as a
// gap. Requests are served one after the other, by whoever came first; a request that comes while another is
// being served (from another thread, or from a host that calls back) is left to that one. Start and Stop
// [audio]. Lock: `midiDeviceOut` is read and replaced under the recorder's lock; devices open and close
// outside it. Ownership: the recorder owns the output while it is attached.
class DeviceSwitch {
public:
    DeviceSwitch(TNoteRecorder& noteRecorder, IMessageBox& messageBox, IDeviceSwitchOwner& switchOwner);
    ~DeviceSwitch();
    DeviceSwitch(const DeviceSwitch&) = delete;
    DeviceSwitch& operator=(const DeviceSwitch&) = delete;

    void SetDevice(float value);
    void SetEnabled(bool enabled);
    void Start();  // the open device, if any, begins to deliver
    void Stop();
    void DeleteRetired();  // outputs that were still in use when they were switched off

    Relaxed<float> midiDeviceValue = 0.0F;    // raw value of parameter 88
    Relaxed<bool> midiDeviceEnabled = false;  // parameter 89: a device is open

private:
    struct Request {
        std::int32_t index;  // parameter 88 or 89
        float value;
    };

    void Ask(Request request);
    bool NextRequest(Request& request);
    void Serve(Request request);
    void ApplyDevice(float value);
    void ApplyEnabled(bool enabled);
    bool openMidiDevice(float value);
    void closeMidiDevice();
    template <typename Action>
    void WithDevice(Action action);

    TNoteRecorder& recorder;
    IMessageBox& messages;
    IDeviceSwitchOwner& owner;
    // Replaced under the recorder's lock, or where waiting for it times out; null while none is open.
    std::atomic<TRTMidiOut*> midiDeviceOut{nullptr};

    Mutex guard;                                      // held across no call
    std::vector<Request> requests GUARDED_BY(guard);  // in the order in which they came
    bool busy GUARDED_BY(guard) = false;              // somebody is serving them
    // Detached; to be deleted once no thread is inside one.
    std::vector<std::unique_ptr<TRTMidiOut>> retired GUARDED_BY(guard);
};
