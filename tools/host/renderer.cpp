#include "tools/host/renderer.h"

#include <strings.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cmath>
#include <stdexcept>
#include <thread>

#include "tools/host/hosted_plugin.h"

namespace {

// The whole of the text as a number; false if there is anything else.
template <typename Number>
bool ReadNumber(const std::string& text, Number& number) {
    const char* const end = text.data() + text.size();
    const auto [stop, fault] = std::from_chars(text.data(), end, number);
    return fault == std::errc() && stop == end;
}

}  // namespace

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
    while (const std::size_t count = audio.Read(block.data(), block.size())) {
        plugin.Process(block.data(), static_cast<std::int32_t>(count));
        progress(audio.Progress());
        if (settings.realTime)
            std::this_thread::sleep_until(
                start + std::chrono::duration_cast<std::chrono::steady_clock::duration>(
                            std::chrono::duration<double>(Seconds(take, plugin.SamplesDelivered()))));
    }
    plugin.Stop();
    take.length = plugin.SamplesDelivered();
    return take;
}

ParameterSetting ParseParameter(const std::string& text, const std::vector<std::string>& names) {
    const std::size_t equals = text.rfind('=');
    if (equals == std::string::npos) throw std::invalid_argument("\"" + text + "\" is not NAME=VALUE");
    const std::string name = text.substr(0, equals);
    ParameterSetting setting;
    if (!ReadNumber(text.substr(equals + 1), setting.value) || !std::isfinite(setting.value))
        throw std::invalid_argument("\"" + text + "\" gives no number");

    const auto named = std::find_if(names.begin(), names.end(), [&](const std::string& known) {
        return strcasecmp(known.c_str(), name.c_str()) == 0;
    });
    if (named != names.end())
        setting.index = static_cast<std::int32_t>(named - names.begin());
    else if (!ReadNumber(name, setting.index) || setting.index < 0 ||
             static_cast<std::size_t>(setting.index) >= names.size())
        throw std::invalid_argument("no parameter is called \"" + name + "\"; orva-host info lists them");
    return setting;
}
