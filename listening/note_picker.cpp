#include "listening/note_picker.h"

#include <algorithm>
#include <limits>

namespace {

constexpr std::int32_t longAgo = 1000;  // frames

}  // namespace

// An end seen in frame k, of frame k - holdFrames + 1 - soundingBack, is due when the onsets of all frames up
// to that one have come: onsetBack + 1 frames after it, which is the frames back of every end.
NotePicker::NotePicker(std::int32_t newOnsetBack, std::int32_t soundingBack)
    : onsetBack(newOnsetBack),
      deafToEnds(std::max(0, soundingBack + 4 - onsetBack)),
      endWait(std::max(0, onsetBack - soundingBack + 2 - holdFrames)) {
    Reset();
}

void NotePicker::Reset() {
    std::fill_n(bands, netBands,
                Band{std::numeric_limits<std::int32_t>::min(), longAgo, onsetBack, 0, 0, false, false});
}

void NotePicker::Step(const std::int32_t* onset, const std::int32_t* threshold, const std::int32_t* sounding,
                      std::int32_t soundingThreshold) {
    for (std::int32_t i = 0; i < netBands; ++i)
        StepBand(bands[i], onset[i], threshold[i], sounding[i] >= soundingThreshold);
}

void NotePicker::StepBand(Band& band, std::int32_t onset, std::int32_t threshold, bool sounds) const {
    const bool begins =
        threshold != never && onset >= threshold && band.before < threshold && band.sinceOnset >= refractory;
    band.before = onset;
    band.sinceOnset = std::min(band.sinceOnset + 1, longAgo);
    if (band.again) {
        band.again = false;
        band.on = true;
    }
    if (begins) {
        band.again = band.on;
        band.framesBack = band.on ? onsetBack + 1 : onsetBack;
        band.on = !band.on;
        band.sinceOnset = 1;
        band.framesWithout = band.framesToEnd = 0;
    }
    if (!band.on && !band.again) return;
    if (band.framesToEnd > 0) {
        if (--band.framesToEnd > 0) return;
    } else {
        if (band.sinceOnset > deafToEnds) band.framesWithout = sounds ? 0 : band.framesWithout + 1;
        if (band.framesWithout < holdFrames) return;
        band.framesWithout = 0;
        band.framesToEnd = endWait;
        if (endWait > 0) return;
    }
    band.on = band.again = false;
    band.framesBack = onsetBack + 1;
}
