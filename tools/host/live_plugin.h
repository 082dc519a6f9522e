#pragma once
#include <atomic>
#include <cstdint>
#include <vector>

#include "devices/message_ring.h"
#include "hosting/event_gatherer.h"
#include "tools/host/hosted_plugin.h"
#include "tools/host/level_follower.h"
#include "tools/host/renderer.h"

// An instance between an audio input and a MIDI output that never stand still: block by block on the thread
// of a sound server, its messages dated inside their period.
//
// Threads: [audio] operations come from one thread at a time and neither allocate, wait nor print; the others
// belong to the thread that made this, but for Change. What the plug-in sends outside of a block, on whatever
// thread, comes at the start of the next period.
class LivePlugin {
public:
    static constexpr std::int32_t longestBlock = 8192;  // samples; longer periods are cut into such

    LivePlugin(const PluginModule& module, std::int32_t rate, std::int32_t period,
               const std::vector<ParameterSetting>& parameters, const EarSettings& ear = {});
    LivePlugin(const LivePlugin&) = delete;
    LivePlugin& operator=(const LivePlugin&) = delete;

    // [audio] One period of audio, passed on to `out`. `write` gets frame and short message of the period's
    // events in order, and returns false when there was no space.
    template <typename Write>
    void Process(const float* in, float* out, std::uint32_t frames, Write write) {
        HearPeriod(in, out, frames);
        events.EndRun(write);
        ++periods;
    }

    // A new rate (Hz) or period length (samples); nothing happens where both are as before. [any], one at a
    // time.
    void Change(std::int32_t newRate, std::int32_t newPeriod);
    // Ends the notes that sound. Audio goes on being passed through, and what is still to be sent, too.
    void Stop();

    HostedPlugin& Plugin() { return plugin; }
    std::int32_t Rate() const { return rate; }                // Hz
    std::int32_t Period() const { return period; }            // samples
    std::uint64_t Periods() const { return periods.load(); }  // that have been heard so far
    std::uint64_t Lost() const { return lost.load(); }        // messages, for want of space
    bool AllSent() const { return events.AllOut(); }
    // The next message the plug-in has sent, with its own date, in the order of sending; false if there is
    // none.
    bool Next(TimedEvent& event);

private:
    void HearPeriod(const float* in, float* out, std::uint32_t frames);
    void FollowLevel(const float* in, std::uint32_t frames);
    void Receive(const TimedEvent& event);

    // Far more than the messages of 33 ms, the time between two looks of the main thread.
    MessageRing<TimedEvent, 4096> sent;  // all that was sent, for Next
    EventGatherer events;
    const bool followsLevel;           // --level auto
    LevelFollower follower;            // audio thread only
    std::int64_t periodStart = 0;      // audio thread only: sample
    std::atomic<bool> stopped{false};  // set by Stop, read by the audio thread
    std::atomic<std::uint64_t> periods{0};
    std::atomic<std::uint64_t> lost{0};
    Relaxed<std::int32_t> rate;
    Relaxed<std::int32_t> period;
    HostedPlugin plugin;  // last: it sends messages while it ends
};
