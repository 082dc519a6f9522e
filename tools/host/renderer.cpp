#include "tools/host/renderer.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <thread>

#include "tools/host/hosted_plugin.h"
#include "tools/host/read_ahead.h"
#include "tools/host/velocity.h"

namespace {

constexpr std::size_t pieceSamples = 1 << 18;  // 1 MiB

// dB for the loudest sample of a whole file.
double LevelFor(const std::string& path, AudioFile::Channel channel) {
    AudioFile audio(path, channel);
    std::vector<float> piece(1 << 16);
    float peak = 0;
    while (const std::size_t count = audio.Read(piece.data(), piece.size()))
        for (std::size_t i = 0; i < count; ++i) peak = std::max(peak, std::abs(piece[i]));
    return LevelForPeak(peak);
}

// Hz. The plug-in knows A 440 Hz alone: at a rate that much lower or higher, what is tuned to another pitch
// sounds as if it were in tune, and samples stay samples.
std::int32_t RateInTune(const Take& take) {
    return take.tuning > 0 ? static_cast<std::int32_t>(std::lround(take.rate * usualTuning / take.tuning))
                           : take.rate;
}

// Block by block, at the pace of the audio if so set.
void HearAll(HostedPlugin& plugin, AudioFile& audio, const RenderSettings& settings, Take& take,
             const std::function<void(double)>& progress) {
    const auto blockSize = static_cast<std::size_t>(settings.blockSize);
    const std::size_t blocks = settings.realTime ? 1 : std::max<std::size_t>(pieceSamples / blockSize, 1);
    ReadAhead pieces(audio, blocks * blockSize, settings.readsAhead && !settings.realTime);
    const auto start = std::chrono::steady_clock::now();
    while (!settings.ended()) {
        const ReadAhead::Piece& piece = pieces.Next();
        if (piece.samples.empty()) break;
        for (std::size_t at = 0; at < piece.samples.size() && !settings.ended(); at += blockSize)
            plugin.Process(&piece.samples[at],
                           static_cast<std::int32_t>(std::min(blockSize, piece.samples.size() - at)));
        progress(piece.progress);
        take.peak = piece.loudest.heard;
        take.peakOfAll = piece.loudest.file;
        if (settings.realTime)
            std::this_thread::sleep_until(
                start + std::chrono::duration_cast<std::chrono::steady_clock::duration>(
                            std::chrono::duration<double>(Seconds(take, plugin.SamplesDelivered()))));
    }
}

// A refined ear decides late: it is given silence until the last notes are decided, and what they are dated
// at beyond the audio's end is its end.
void HearOut(HostedPlugin& plugin, Take& take, std::int32_t blockSize) {
    constexpr std::int64_t silencesPerSecond = 5;  // 200 ms, twice what it looks ahead
    take.length = plugin.SamplesDelivered();
    const std::vector<float> block(static_cast<std::size_t>(blockSize));
    const std::int64_t end = take.length + take.rate / silencesPerSecond;
    while (plugin.SamplesDelivered() < end)
        plugin.Process(block.data(), static_cast<std::int32_t>(
                                         std::min<std::int64_t>(blockSize, end - plugin.SamplesDelivered())));
    plugin.Stop();
    for (TimedEvent& event : take.events) event.sample = std::min(event.sample, take.length);
}

}  // namespace

double LevelForPeak(double peak) {
    constexpr double wanted = -1, most = 40, least = -20;  // dB
    return peak > 0 ? std::clamp(wanted - 20 * std::log10(peak), least, most) : 0.0;
}

Take Render(const PluginModule& module, const std::string& path, const RenderSettings& settings,
            const std::function<void(double)>& progress) {
    AudioFile audio(path, settings.channel);
    Take take;
    take.rate = audio.Rate();
    take.tuning = settings.tuning > 0 ? settings.tuning : FindTuning(path, settings.channel).value_or(0);
    HostedPlugin plugin(module, RateInTune(take), settings.hostVendor,
                        [&](const TimedEvent& event) { take.events.push_back(event); });
    plugin.Start(settings.blockSize);
    for (const ParameterSetting& setting : settings.parameters)
        plugin.SetParameter(setting.index, setting.value);

    EarSettings ear = settings.ear;
    if (ear.autoLevel) ear.level = static_cast<float>(LevelFor(path, settings.channel));
    plugin.SetEar(ear);
    if (settings.followsLevels) plugin.AskForLevels();

    HearAll(plugin, audio, settings, take, progress);
    if (ear.IsRefined()) {
        HearOut(plugin, take, settings.blockSize);
    } else {
        plugin.Stop();
        take.length = plugin.SamplesDelivered();
    }
    if (settings.followsLevels) FollowLevels(take);
    return take;
}
