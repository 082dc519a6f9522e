#include "plugin/device_switch.h"

#include <stdexcept>
#include <utility>

#include "delivery/note_recorder.h"
#include "delivery/rt_midi_out.h"
#include "desktop/message_box.h"
#include "parameters/parameters.h"

namespace {

constexpr char openingFailed[] = "Error opening MIDI device. It may be already opened by the host.";

}  // namespace

DeviceSwitch::DeviceSwitch(TNoteRecorder& noteRecorder, IMessageBox& messageBox,
                           IDeviceSwitchOwner& switchOwner)
    : recorder(noteRecorder), messages(messageBox), owner(switchOwner) {}

DeviceSwitch::~DeviceSwitch() = default;

void DeviceSwitch::SetDevice(float value) {
    Ask({paramDevice, value});
}
void DeviceSwitch::SetEnabled(bool enabled) {
    Ask({paramDeviceEnabled, enabled ? 1.0F : 0.0F});
}

void DeviceSwitch::Ask(Request request) {
    {
        const Locked held(guard);
        requests.push_back(request);
        if (busy) return;
        busy = true;
    }
    try {
        for (Request next; NextRequest(next);) Serve(next);
    } catch (...) {
        const Locked held(guard);
        busy = false;
        throw;
    }
}

bool DeviceSwitch::NextRequest(Request& request) {
    const Locked held(guard);
    busy = !requests.empty();
    if (!busy) return false;
    request = requests.front();
    requests.erase(requests.begin());
    return true;
}

void DeviceSwitch::Serve(Request request) {
    if (request.index == paramDevice)
        ApplyDevice(request.value);
    else
        ApplyEnabled(IsOn(request.value));
}

void DeviceSwitch::ApplyDevice(float value) {
    if (!midiDeviceEnabled) {
        midiDeviceValue = value;  // opened later
        return;
    }
    closeMidiDevice();
    if (openMidiDevice(value)) return;
    const float old = midiDeviceValue;
    if (openMidiDevice(old))
        owner.DeviceFellBack(paramDevice, old);
    else
        owner.DeviceFellBack(paramDeviceEnabled, 0.0F);
}

void DeviceSwitch::ApplyEnabled(bool enabled) {
    if (enabled == midiDeviceEnabled) return;
    if (!enabled)
        closeMidiDevice();
    else if (!openMidiDevice(midiDeviceValue))
        owner.DeviceFellBack(paramDeviceEnabled, 0.0F);
}

bool DeviceSwitch::openMidiDevice(float value) {
    std::unique_ptr<TRTMidiOut> opened;
    try {
        opened = std::make_unique<TRTMidiOut>(DeviceOf(value));
    } catch (const std::runtime_error& error) {
        messages.Show(error.what(), openingFailed);
        return false;
    }
    closeMidiDevice();
    midiDeviceValue = value;
    TRTMidiOut* const output = opened.get();
    recorder.AddOutput(output);
    static_cast<void>(opened.release());  // the recorder owns it from here on
    {
        const TNoteRecorder::Hold held(recorder);
        midiDeviceOut = output;
        output->Start();
    }
    midiDeviceEnabled = true;
    owner.DeviceOpened();
    return true;
}

void DeviceSwitch::closeMidiDevice() {
    std::unique_ptr<TRTMidiOut> closed;
    {
        const TNoteRecorder::Hold held(recorder);
        closed.reset(midiDeviceOut.exchange(nullptr));
        if (closed == nullptr) return;
        closed->Stop();
        recorder.RemoveOutput(closed.get());
    }
    midiDeviceEnabled = false;
    {
        const Locked held(guard);
        retired.push_back(std::move(closed));
    }
    DeleteRetired();
}

// A walk over the outputs that began before the removal may still be inside one; a later call deletes it
// then. Devices close outside all locks, since that takes its time.
void DeviceSwitch::DeleteRetired() {
    std::vector<std::unique_ptr<TRTMidiOut>> gone;
    {
        const Locked held(guard);
        if (!retired.empty() && recorder.OutputsAreQuiet()) gone.swap(retired);
    }
}

// By way of the recorder's list, whose walk keeps a device that is being switched off from being deleted.
template <typename Action>
void DeviceSwitch::WithDevice(Action action) {
    const TNoteRecorder::Hold held(recorder);
    const TNoteOut* const device = midiDeviceOut;
    if (device == nullptr) return;
    recorder.outputs.ForEach([&](TNoteOut& output) {
        if (&output == device) action(output);
    });
}

void DeviceSwitch::Start() {
    WithDevice([](TNoteOut& device) { device.Start(); });
}

void DeviceSwitch::Stop() {
    WithDevice([](TNoteOut& device) { device.Stop(); });
}
