#include "lv2/instance.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <map>

#include <lv2/midi/midi.h>

#include "base/lasting.h"
#include "base/mutex.h"
#include "lv2/features.h"

namespace {

constexpr double echoSeconds = 0.5;
constexpr double slowest = 1,
                 fastest = 1e9;  // Hz; the frames of an echo are a whole number for any host's rate

std::int64_t EchoFrames(double rate) {
    return static_cast<std::int64_t>(echoSeconds * (rate > slowest && rate < fastest ? rate : slowest));
}

// The instances that hosts hold.
struct Instances {
    Mutex guard;
    std::map<LV2_Handle, std::shared_ptr<Instance>> held GUARDED_BY(guard);
};

Instances& All() {
    static Lasting<Instances> all;
    return all.value;
}

DeviceWorker::Schedule ScheduleOf(const LV2_Worker_Schedule* schedule) {
    if (schedule == nullptr) return {};
    return [schedule] {
        const std::uint32_t token = 0;  // the requests are kept here; some hosts refuse work without content
        return schedule->schedule_work(schedule->handle, sizeof token, &token) == LV2_WORKER_SUCCESS;
    };
}

bool SameBits(float a, float b) {
    return std::bit_cast<std::uint32_t>(a) == std::bit_cast<std::uint32_t>(b);
}

}  // namespace

LV2_Handle Instance::Make(double rate, const LV2_Feature* const* features) noexcept {
    try {
        const auto* map = Feature<LV2_URID_Map>(features, LV2_URID__map);
        if (map == nullptr) return nullptr;
        const MidiPort midi(map->map(map->handle, LV2_ATOM__Sequence),
                            map->map(map->handle, LV2_MIDI__MidiEvent));
        auto made = std::make_shared<Instance>(rate, midi,
                                               Feature<LV2_Worker_Schedule>(features, LV2_WORKER__schedule));
        Instance* const handle = made.get();
        const Locked held(All().guard);
        All().held.emplace(handle, std::move(made));
        return handle;
    } catch (...) {
        return nullptr;
    }
}

std::shared_ptr<Instance> Instance::Find(LV2_Handle handle) {
    const Locked held(All().guard);
    const auto found = All().held.find(handle);
    return found != All().held.end() ? found->second : nullptr;
}

void Instance::Forget(LV2_Handle handle) {
    std::shared_ptr<Instance> last;  // ends outside the lock
    {
        const Locked held(All().guard);
        const auto found = All().held.find(handle);
        if (found == All().held.end()) return;
        last = std::move(found->second);
        All().held.erase(found);
    }
    last->hostHasLeft = true;
}

Instance::Instance(double rate, MidiPort midiPort, const LV2_Worker_Schedule* schedule)
    : echoFrames(EchoFrames(rate)), midi(midiPort), hosted(rate, *this, ScheduleOf(schedule)) {
    for (std::int32_t i = 0; i < parameterCount; ++i) {
        const auto at = static_cast<std::size_t>(i);
        controls[at].applied = hosted.Object().Parameter(i);
        known[at] = controls[at].applied;
    }
}

void Instance::Connect(std::uint32_t port, void* place) {
    if (port == portAudioIn)
        audioIn = static_cast<const float*>(place);
    else if (port == portAudioOut)
        audioOut = static_cast<float*>(place);
    else if (port == portMidi)
        midi.Connect(static_cast<LV2_Atom_Sequence*>(place));
    else if (port >= portEar && port < portCount)
        hearing[port - portEar].port = static_cast<const float*>(place);
    else if (port < portEar)
        controls[port - portFirstControl].port = static_cast<const float*>(place);
}

void Instance::Run(std::uint32_t frames) {
    hosted.BeginRun(frames);
    TakeChangesOfTheWindow();
    TakePorts();
    TakeHearing();
    hosted.Process(audioIn, audioOut);
    midi.Begin();
    hosted.EndRun([this](std::uint32_t frame, std::uint32_t message) { return midi.Write(frame, message); });
    clock += frames;
}

void Instance::TakeChangesOfTheWindow() {
    forRun.drain([this](std::int32_t index, float value) {
        Control& control = controls[static_cast<std::size_t>(index)];
        control.applied = value;
        control.echo.Await(value, clock + echoFrames);
    });
}

void Instance::TakePorts() {
    for (std::int32_t i = 0; i < parameterCount; ++i) {
        Control& control = controls[static_cast<std::size_t>(i)];
        if (control.port == nullptr) continue;
        const float value = *control.port;
        if (!control.echo.Counts(value, clock) || SameBits(value, control.applied)) continue;
        control.applied = value;
        known[static_cast<std::size_t>(i)] = value;
        hosted.SetFromHost(i, value);
    }
}

void Instance::TakeHearing() {
    for (std::uint32_t port = portEar; port < portCount; ++port) {
        Control& control = hearing[port - portEar];
        if (control.port == nullptr || SameBits(*control.port, control.applied)) continue;
        const float value = control.applied = *control.port;
        if (port == portEar)
            hosted.Object().SetRefined(IsOn(value));
        else if (port == portEarThreshold)
            hosted.Object().SetThreshold(value);
        else
            hosted.Object().SetInputLevel(value);
    }
}

void Instance::ParameterEdited(std::int32_t index, float value) {
    known[static_cast<std::size_t>(index)] = value;
    forRun.post(index, value);
}

void Instance::FellBack(std::int32_t index, float value) {
    known[static_cast<std::size_t>(index)] = value;
}

void Instance::WindowShows(bool shows) {
    if (shows)  // older than what the window reads now
        ChangesForHost().drain([](std::int32_t, float) {});
    windowShows = shows;
}
