#pragma once
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "base/relaxed.h"
#include "hosting/plugin_host.h"
#include "tools/host/ear_settings.h"
#include "tools/host/plugin_module.h"
#include "tools/host/take.h"

// One instance of a loaded plug-in in this program's host: the life of the instance, and the date of each
// event that it sends.
//
// Order of calls: construction opens, Start sets rate and block size and resumes, Process any number of
// times, Stop suspends, at which the plug-in ends the notes that still sound; destruction closes.
//
// Threads: one thread an instance, but for Change, the parameters and Dispatch, as far as the plug-in bears
// it. The plug-in sends events from inside its construction, Process and Stop, or from a call on another
// thread, and the sink is called there. Errors: std::runtime_error when the plug-in refuses or cannot do what
// is asked of it here.
class HostedPlugin final : public PluginHost {
public:
    using EventSink = std::function<void(const TimedEvent&)>;

    // The rate in Hz and the vendor are answered from the first moment on: plug-ins ask in their constructor.
    // The sink may be empty. The module must outlive this.
    HostedPlugin(const PluginModule& module, std::int32_t newRate, std::string newVendor, EventSink newSink);
    ~HostedPlugin();

    void Start(std::int32_t blockSize);  // samples; later blocks may be shorter
    // At most blockSize samples. Of what comes out, `out` gets the first output, unless it is null.
    void Process(const float* samples, std::int32_t count, float* out = nullptr);
    void Stop();
    // Announces a new rate and block size, at most the one of Start, with nothing allocated here. It may come
    // from a thread beside that of Process, as hosts do it.
    void Change(std::int32_t newRate, std::int32_t blockSize);

    std::int64_t SamplesDelivered() const { return delivered; }
    // Sets ear, threshold and level, as far as the plug-in knows of them. Errors: see EarSettings.
    void SetEar(const EarSettings& settings) const;
    // Asks for the level of each note at its end, of a plug-in that knows of it.
    void AskForLevels() { asksForLevels = true; }
    void SetWindowScale(double scale) const;  // while its window is closed; 1 is the layout's own size
    void SetWindowDark() const;
    void SetLevel(float dB) const;  // [audio]

private:
    void EventsSent(const VstEvents& events) override;
    void Announce(std::int32_t blockSize);

    bool asksForLevels = false;
    bool runs = false;  // between Start and Stop
    EventSink sink;
    Relaxed<std::int64_t> delivered = 0;  // samples given before the block in progress
    std::vector<float> output;            // one block for each of the plug-in's outputs
    std::vector<float*> inputPointers;    // each input hears the same
    std::vector<float*> outputPointers;   // into output
};
