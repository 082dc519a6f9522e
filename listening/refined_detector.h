#pragma once
#include <cstdint>

#include "base/relaxed.h"
#include "engine/real_time_detector.h"
#include "listening/features.h"
#include "listening/net.h"
#include "listening/note_picker.h"

// The refined ear: a second hearing of the band energies of a TRealTimeTS107, which goes on deciding as ever
// beside it. It is a detector like that one and a handler of that one's frames: at each, it steps its net and
// calls its own handler.
//
// The settings of the other are its settings, too: SetRelativeThreshold makes fewer notes or more,
// SetFloorDb leaves out quiet ones, and a band's gain makes its notes rarer, at 0 impossible.
//
// Threads: as TRealTimeTS107; Threshold [any]. Memory: all in the object, under 256 KiB; weights are shared.
// Lifetime: the inner detector must outlive this; joined to it while its `handler` is this.
class TRefinedDetector final : public INoteDetector, public INoteHandler {
public:
    // How far it looks ahead: for a player who listens, or for a recording that can wait.
    enum class Look { live, file };  // 50 and 80 ms

    // The inner detector must have netBands bands. It is not touched, so that it may be at work meanwhile.
    TRefinedDetector(TRealTimeTS107& newInner, Look look, const NetKernels& kernels = BestNetKernels());

    void Process(const short* samples, unsigned bytes) override { inner.Process(samples, bytes); }
    void Reset() override;  // the inner one, too
    // From where the last change of the band's flag belongs to the end of the frame that brought it. ms
    float GetBandDelay(std::int32_t band) override;

    void Attach(INoteDetector*) override {}
    void OnFrame() override;  // of the inner detector

    void SetLook(Look look);  // forgets what was heard
    void RateChanged();       // after the inner detector's rate has; forgets what was heard

    Relaxed<float> extraThreshold = 0.0F;  // logits on top of each onset's threshold; fewer notes above 0

private:
    void Forget();
    void Hear();
    void FindThresholds();

    TRealTimeTS107& inner;
    EarNet::Output onset;
    EarFeatures features;
    EarNet net;
    NotePicker picker;
    std::int32_t thresholds[netBands] = {};
    bool flags[netBands] = {};    // bandOn; changes are atomic stores (see BandIsOn)
    float powers[netBands] = {};  // bandLevel
};
