#pragma once
#include <string>

class AudioEffectX;

// Tests of the host that change how the plug-in acts. The first two are asked once per process, by whichever
// instance comes first; two that ask at the same moment agree.
//
// Threads: [any].
bool hostIsVst24(AudioEffectX& effect);    // the host speaks version 2400 exactly; a later one counts as no
bool hostIsAbleton(AudioEffectX& effect);  // the vendor text is exactly the one whose hosts need offsets >= 0
bool hostDropsEarlyEvents(AudioEffectX& effect);  // one of those known to drop what is dated before the block

// What the host says of itself and of its capabilities, in lines for the log; empty where memory is short.
// Asks the host at each call.
std::string HostFacts(AudioEffectX& effect);
