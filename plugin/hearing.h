#pragma once
#include "vst2/vendor_call.h"

// How an instance turns audio into notes, beside its parameters.
struct Hearing {
    Ear ear = Ear::classic;
    float threshold = 0;  // logits on top of the refined ear's own; fewer notes above 0
    float level = 0;      // dB by which recognition hears the audio louder

    bool operator==(const Hearing&) const = default;
};

// The hearing that this user prefers in hosts that have no control for it. It is kept in the per-user store,
// a setting each, since a host's project holds the parameters and nothing else. A setting that is missing, or
// makes no sense, is the initial one.
//
// Threads: [any] but [audio]: both work on files.
Hearing ReadPreferredHearing();
// Stores what `now` changes of `before`; false where that cannot be written.
bool StorePreferredHearing(const Hearing& before, const Hearing& now);
