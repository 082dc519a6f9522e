#include "tools/host/tuning.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <complex>
#include <cstdint>
#include <filesystem>
#include <numbers>
#include <stdexcept>
#include <vector>

namespace {

using Spectrum = std::vector<std::complex<double>>;

constexpr int framesPerSecond = 4;                    // at most; a frame's length is a power of two
constexpr int heardSeconds = 300;                     // of a long recording
constexpr double lowestPartial = 110;                 // Hz; below, a frame resolves semitones poorly
constexpr double highestPartial = 1760;               // Hz; above lie mostly partials that are not in tune
constexpr double faintest = 0.05;                     // of a frame's strongest partial, 26 dB below it
constexpr double silence = 1e-4;                      // amplitude, 80 dB under full scale
constexpr double leastAgreement = 0.35;               // 0 for partials anywhere, 1 for all in one place
constexpr double fullTurn = 2 * std::numbers::pi;     // radians
constexpr double semitoneRatio = 1.0594630943592953;  // 2^(1/12)

// Of a length that is a power of two, in place: even and odd samples apart, then put together.
void Transform(Spectrum& values) {
    const std::size_t length = values.size();
    for (std::size_t i = 1, reversed = 0; i < length; ++i) {
        std::size_t bit = length >> 1;
        for (; (reversed & bit) != 0; bit >>= 1) reversed ^= bit;
        reversed ^= bit;
        if (i < reversed) std::swap(values[i], values[reversed]);
    }
    for (std::size_t half = 1; half < length; half *= 2) {
        const auto step = std::polar(1.0, -fullTurn / static_cast<double>(2 * half));
        for (std::size_t start = 0; start < length; start += 2 * half) {
            std::complex<double> turn = 1;
            for (std::size_t i = start; i < start + half; ++i, turn *= step) {
                const auto odd = turn * values[i + half];
                values[i + half] = values[i] - odd;
                values[i] += odd;
            }
        }
    }
}

// Adds up, as arrows whose angle is a partial's place between two semitones and whose length its amplitude.
class PlaceBetweenSemitones {
public:
    void Add(double hertz, double amplitude) {
        const double semitones = 12 * std::log2(hertz / usualTuning);
        sum += std::polar(amplitude, fullTurn * semitones);
        total += amplitude;
    }
    std::optional<double> Tuning() const {
        if (total <= 0 || std::abs(sum) < leastAgreement * total) return std::nullopt;
        return usualTuning * std::pow(semitoneRatio, std::arg(sum) / fullTurn);
    }

private:
    std::complex<double> sum;
    double total = 0;
};

// The partials of one frame: peaks of its spectrum, between bins by the parabola through three logarithms.
void AddPartials(const std::vector<float>& frame, std::int32_t rate, PlaceBetweenSemitones& place) {
    const auto length = static_cast<double>(frame.size());
    Spectrum values(frame.size());
    for (std::size_t i = 0; i < frame.size(); ++i)
        values[i] = frame[i] * (1 - std::cos(fullTurn * static_cast<double>(i) / length)) / length;
    Transform(values);
    const auto bin = [&](double hertz) {
        return std::min(static_cast<std::size_t>(hertz * length / rate), frame.size() / 2 - 2);
    };
    const std::size_t from = bin(lowestPartial), to = bin(highestPartial);
    std::vector<double> amplitudes(to + 2);
    for (std::size_t i = from - 1; i < to + 2; ++i) amplitudes[i] = std::abs(values[i]);
    const double strongest = *std::max_element(amplitudes.begin(), amplitudes.end());
    const double least = std::max(silence, faintest * strongest);
    for (std::size_t i = from; i <= to; ++i) {
        const double before = amplitudes[i - 1], at = amplitudes[i], after = amplitudes[i + 1];
        if (at < least || at < before || at <= after || before <= 0 || after <= 0) continue;
        const double a = std::log(before), b = std::log(at), c = std::log(after);
        const double offset = (a - c) / (2 * (a - 2 * b + c));
        place.Add((static_cast<double>(i) + offset) * rate / length, at);
    }
}

}  // namespace

std::optional<double> FindTuning(const std::string& path, AudioFile::Channel channel) {
    std::error_code unknown;
    const auto kind = std::filesystem::status(path, unknown).type();
    if (kind == std::filesystem::file_type::fifo)
        throw std::runtime_error("comes through a pipe and can be heard once only; name its tuning");
    AudioFile audio(path, channel);
    std::vector<float> frame(std::bit_ceil(static_cast<std::size_t>(audio.Rate() / framesPerSecond)));
    const std::size_t frames =
        static_cast<std::size_t>(audio.Rate()) * std::size_t{heardSeconds} / frame.size();
    PlaceBetweenSemitones place;
    for (std::size_t i = 0; i < frames && audio.Read(frame.data(), frame.size()) == frame.size(); ++i)
        AddPartials(frame, audio.Rate(), place);
    return place.Tuning();
}
