#pragma once
#include <string>

class AudioEffectX;

// Two tests of the host that change how the plug-in acts. Each is asked once per process, by whichever
// instance comes first; two that ask at the same moment agree.
//
// Threads: [any].
bool hostIsVst24(AudioEffectX& effect);    // the host speaks version 2400 exactly; a later one counts as no
bool hostIsAbleton(AudioEffectX& effect);  // the vendor text is exactly the one whose hosts need offsets >= 0

// What the host says of itself and of its capabilities, in lines for the log; empty where memory is short.
// Asks the host at each call.
std::string HostFacts(AudioEffectX& effect);
