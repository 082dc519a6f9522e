#include "tools/host/meter.h"

#include <charconv>
#include <stdexcept>

Meter ParseMeter(const std::string& text) {
    constexpr int mostBeats = 32, finestBeat = 5;
    const char* const end = text.data() + text.size();
    Meter meter;
    const auto [slash, fault] = std::from_chars(text.data(), end, meter.beats);
    if (fault == std::errc() && slash != end && *slash == '/' && meter.beats >= 1 && meter.beats <= mostBeats)
        for (meter.beatLog2 = 0; meter.beatLog2 <= finestBeat; ++meter.beatLog2)
            if (std::to_string(meter.BeatParts()) == std::string(slash + 1, end)) return meter;
    throw std::invalid_argument("\"" + text + "\" is no meter like 3/4 or 6/8");
}
