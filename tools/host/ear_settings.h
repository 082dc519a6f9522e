#pragma once
#include <optional>

#include "vst2/vendor_call.h"

// How the plug-in is to hear; what it does unasked by default.
struct EarSettings {
    Ear ear = Ear::classic;
    float threshold = 0;      // logits; fewer notes above 0, of the refined ears alone
    bool autoLevel = false;   // `level` follows the audio
    float level = 0;          // dB by which recognition hears it louder
    bool isRequired = false;  // an ear that the plug-in lacks is a fault

    bool IsRefined() const { return ear != Ear::classic; }
};
