#pragma once
#include <array>
#include <atomic>
#include <cstdint>
#include <memory>

#include <lv2/core/lv2.h>
#include <lv2/worker/worker.h>

#include "base/relaxed.h"
#include "hosting/echo_wait.h"
#include "hosting/hosted_instance.h"
#include "lv2/midi_port.h"
#include "lv2/port_table.h"

// One instance of the LV2 plug-in: the ports that stand around the object.
//
// The ports are the state. A run hands the values that have changed to the object, ascending by parameter;
// the first one compares with the object's own beginnings, so that what nobody touched keeps the detector's
// settings. A change from the window has reached the object already: it goes to the host, and the port's
// older values do not count until the host has echoed it, or for half a second of audio.
//
// Ownership: the host's handle holds it, and so does an open window; whichever goes last deletes it.
// Threads: Run [audio], and no allocation or wait in it; Connect, Activate and Deactivate never beside it.
class Instance final : private IInstanceListener {
public:
    // Null when the host lacks what is needed or the object cannot be made.
    static LV2_Handle Make(double rate, const LV2_Feature* const* features) noexcept;
    // The instance of a handle; none when it is not, or no more, one of ours. [any]
    static std::shared_ptr<Instance> Find(LV2_Handle handle);
    static void Forget(LV2_Handle handle);  // the host's share ends

    Instance(double rate, MidiPort midiPort, const LV2_Worker_Schedule* schedule);
    Instance(const Instance&) = delete;
    Instance& operator=(const Instance&) = delete;

    void Connect(std::uint32_t port, void* place);
    void Activate() { hosted.Resume(); }
    void Deactivate() { hosted.Suspend(); }
    void Run(std::uint32_t frames);
    void Work() { hosted.Work(); }

    // --- for the window, [ui] ---
    bool TakeWindow() { return !windowIsTaken.exchange(true); }  // false when there is one already
    void LeaveWindow() { windowIsTaken = false; }
    void WindowShows(bool shows);
    HostedObject& Object() { return hosted.Object(); }
    Mailbox& ChangesForHost() { return hosted.ChangesForHost(); }
    float Known(std::int32_t index) const { return known[static_cast<std::size_t>(index)]; }
    bool HostHasLeft() const { return hostHasLeft; }

private:
    struct Control {
        const float* port = nullptr;  // the host's
        float applied = 0;            // what the object, or the worker, has had last
        EchoWait echo;
    };

    void TakeChangesOfTheWindow();
    void TakePorts();
    void TakeHearing();
    void ParameterEdited(std::int32_t index, float value) override;
    bool WantsFallBacks() override { return windowShows; }  // without a window the host keeps its request
    void FellBack(std::int32_t index, float value) override;

    const std::int64_t echoFrames;  // frames that a port may take for an echo
    std::int64_t clock = 0;         // frames run; of the audio thread
    std::array<Control, parameterCount> controls;
    std::array<Relaxed<float>, parameterCount> known;  // what the object has, as far as ports and window go
    std::array<Control, portCount - portEar> hearing;  // begins as the object does: all 0
    const float* audioIn = nullptr;
    float* audioOut = nullptr;
    MidiPort midi;
    Mailbox forRun;  // changes from the window
    std::atomic<bool> windowIsTaken{false};
    Relaxed<bool> windowShows = false;
    Relaxed<bool> hostHasLeft = false;
    HostedInstance hosted;  // last: it calls back into what stands above
};
