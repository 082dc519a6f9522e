#pragma once
#include <cstdint>

#include "vst2/records.h"

// The vendor's own call of this plug-in, under the published effVendorSpecific, for hosts that know it: index
// is `vendorCall`, value names a setting, opt is what it is set to. Answered by 1 where it was understood, by
// 0 where not; a host that never calls it has a plug-in that knows none of this.
constexpr std::int32_t vendorCall = FourCharacters('O', 'R', 'V', '1');

enum VendorSetting : std::intptr_t {
    vendorEar = 1,         // an Ear, as a number
    vendorThreshold = 2,   // logits on top of the refined ear's own threshold; fewer notes above 0
    vendorInputLevel = 3,  // dB by which recognition hears the audio louder; 0 leaves each sample as it is
    // A question: opt is a MIDI note, ptr gets as a float the highest level, a power, since it last began.
    // For whoever receives a note's end, from inside that call or later.
    vendorPeakLevel = 4,
    vendorWindowScale = 5,  // of the instance's window, once it opens; 1 is the layout's own size
    vendorWindowDark = 6,   // not 0: windows are dark, whatever the user prefers
    vendorNoteDates = 7,    // how events are dated, as a number of NoteDates, whatever the user prefers
};

// What turns the audio into notes: the detector itself, or its refined ear on top of it, which looks ahead by
// 50 ms for a player and by 80 ms for a recording that can wait.
enum class Ear : std::int32_t { classic, refinedLive, refinedFile };
