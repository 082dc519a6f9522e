#include "tools/host/bar_time.h"

#include <algorithm>
#include <cmath>

double QuartersFromBarOne(const Take& take, std::int64_t sample) {
    const double quarters = (Seconds(take, sample) - take.barOne) * take.tempo / 60;
    if (take.gridParts == 0) return quarters;
    const double part = 4.0 / take.gridParts;  // quarters
    return std::round(quarters / part) * part;
}

std::int64_t BarsBeforeBarOne(const Take& take, const std::vector<HeardNote>& notes) {
    constexpr double rounding = 1e-9;  // bars, by which a product may miss a whole number
    double first = 0;                  // bars
    for (const HeardNote& note : notes)
        first = std::min(first, QuartersFromBarOne(take, note.begin) / take.meter.BarQuarters());
    return static_cast<std::int64_t>(std::ceil(-first - rounding));
}
