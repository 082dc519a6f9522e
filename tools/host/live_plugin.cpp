#include "tools/host/live_plugin.h"

#include <algorithm>

#include "parameters/parameters.h"

// The longest period is announced first, so that every buffer is there whatever the server changes to.
LivePlugin::LivePlugin(const PluginModule& module, std::int32_t newRate, std::int32_t newPeriod,
                       const std::vector<ParameterSetting>& parameters, const EarSettings& ear)
    : followsLevel(ear.autoLevel),
      rate(newRate),
      period(newPeriod),
      plugin(module, newRate, "ORVA", [this](const TimedEvent& event) { Receive(event); }) {
    plugin.Start(longestBlock);
    plugin.Change(newRate, std::min(newPeriod, longestBlock));
    for (const ParameterSetting& setting : parameters) plugin.SetParameter(setting.index, setting.value);
    plugin.SetEar(ear);
}

void LivePlugin::HearPeriod(const float* in, float* out, std::uint32_t frames) {
    periodStart = plugin.SamplesDelivered();
    events.BeginRun(frames);
    if (stopped.load() || plugin.Record().numOutputs == 0) std::copy_n(in, frames, out);
    if (stopped.load()) return;
    if (followsLevel) FollowLevel(in, frames);
    for (std::uint32_t at = 0; at < frames;) {
        const std::uint32_t count = std::min<std::uint32_t>(frames - at, longestBlock);
        plugin.Process(in + at, static_cast<std::int32_t>(count), out + at);
        at += count;
    }
}

void LivePlugin::FollowLevel(const float* in, std::uint32_t frames) {
    if (follower.Hear(in, frames, rate)) plugin.SetLevel(follower.Level());
}

// Three zero bytes, where the plug-in had no note, are no MIDI.
void LivePlugin::Receive(const TimedEvent& event) {
    const auto& [status, first, second] = event.bytes;
    if (status < 0x80) return;
    const std::uint32_t message = status | std::uint32_t{first} << 8 | std::uint32_t{second} << 16;
    if (!events.Take(event.sample - periodStart, message) || !sent.Push(event)) ++lost;
}

void LivePlugin::Change(std::int32_t newRate, std::int32_t newPeriod) {
    if (newRate == rate && newPeriod == period) return;
    rate = newRate;
    period = newPeriod;
    plugin.Change(newRate, std::min(newPeriod, longestBlock));
    // A new rate takes the gains of the equalizer's bars from the detector; the bars keep their values.
    for (std::int32_t bar = paramFirstBar; bar <= paramLastBar; ++bar)
        plugin.SetParameter(bar, plugin.Parameter(bar));
}

void LivePlugin::Stop() {
    stopped.store(true);
    plugin.Stop();
}

bool LivePlugin::Next(TimedEvent& event) {
    if (!sent.Ready()) return false;
    event = sent.Front();
    sent.Pop();
    return true;
}
