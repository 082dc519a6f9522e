#pragma once
#include <atomic>
#include <cstddef>

#include "base/relaxed.h"

// The highest sample that has come in since the window last looked. Nothing is measured while nobody watches.
//
// Threads: Measure [audio], one load and at most one store a block; the others [ui]. A look in the middle of
// a block may lose that block's peak, if it was below the one that is taken.
class InputMeter {
public:
    // The first sample that wraps on its way to the detector, where the host's full scale is 1.
    static constexpr float fullScale = 32768.0F / 30000.0F;

    template <typename Sample>
    void Measure(const Sample* in, std::size_t count);  // null counts as silence

    void Watch(bool on) {
        watched = on;
        peak = 0;
    }
    float TakePeak() {
        return peak.exchange(0, std::memory_order_relaxed);
    }  // 0 for silence; may be infinite

private:
    Relaxed<bool> watched = false;
    std::atomic<float> peak{0};
};
