#include "tools/host/meter.h"

#include <algorithm>
#include <stdexcept>

#include "tools/host/read_number.h"

Meter ParseMeter(const std::string& text) {
    constexpr int mostBeats = 32, finestBeat = 5;
    const std::size_t slash = std::min(text.find('/'), text.size());
    Meter meter;
    if (ReadNumber(text.substr(0, slash), meter.beats) && meter.beats >= 1 && meter.beats <= mostBeats)
        for (meter.beatLog2 = 0; meter.beatLog2 <= finestBeat; ++meter.beatLog2)
            if (text.substr(slash) == "/" + std::to_string(meter.BeatParts())) return meter;
    throw std::invalid_argument("\"" + text + "\" is no meter like 3/4 or 6/8");
}
