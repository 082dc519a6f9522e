#include "tools/host/renderer.h"

#include <chrono>
#include <thread>

#include "tools/host/hosted_plugin.h"

Take Render(const PluginModule& module, const std::string& path, const RenderSettings& settings,
            const std::function<void(double)>& progress) {
    AudioFile audio(path, settings.channel);
    Take take;
    take.rate = audio.Rate();
    HostedPlugin plugin(module, take.rate, settings.hostVendor,
                        [&](const TimedEvent& event) { take.events.push_back(event); });
    plugin.Start(settings.blockSize);
    for (const ParameterSetting& setting : settings.parameters)
        plugin.SetParameter(setting.index, setting.value);

    std::vector<float> block(static_cast<std::size_t>(settings.blockSize));
    const auto start = std::chrono::steady_clock::now();
    while (!settings.ended()) {
        const std::size_t count = audio.Read(block.data(), block.size());
        if (count == 0) break;
        plugin.Process(block.data(), static_cast<std::int32_t>(count));
        progress(audio.Progress());
        if (settings.realTime)
            std::this_thread::sleep_until(
                start + std::chrono::duration_cast<std::chrono::steady_clock::duration>(
                            std::chrono::duration<double>(Seconds(take, plugin.SamplesDelivered()))));
    }
    plugin.Stop();
    take.length = plugin.SamplesDelivered();
    take.peak = audio.Loudest().heard;
    take.peakOfAll = audio.Loudest().file;
    return take;
}
