#include "plugin/host_facts.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <iomanip>
#include <iterator>
#include <sstream>

#include "vst2/audio_effect_x.h"

namespace {

// A cached answer: one word, so that it needs no lock.
enum Answer : std::uint32_t { notAsked = 0, no = 1, yes = 2 };
std::atomic<std::uint32_t> vst24{notAsked};
std::atomic<std::uint32_t> ableton{notAsked};

template <typename Ask>
bool Cached(std::atomic<std::uint32_t>& answer, Ask ask) {
    std::uint32_t known = answer.load(std::memory_order_relaxed);
    if (known == notAsked) {
        known = ask() ? yes : no;
        answer.store(known, std::memory_order_relaxed);
    }
    return known == yes;
}

// Hosts that drop events dated before the block, by the product's name that they report.
const char* const productsThatDropEarlyEvents[] = {
    "Ardour",  // run, version 7.3: 0 of 174 notes arrived, its audio thread wrote a stack trace for each
    "Carla",   // not run; known from its rules for events
};

const char* const hostCapabilities[] = {
    "sendVstEvents",
    "sendVstMidiEvent",
    "sendVstTimeInfo",
    "receiveVstEvents",
    "receiveVstMidiEvent",
    "receiveVstTimeInfo",
    "reportConnectionChanges",
    "acceptIOChanges",
    "sizeWindow",
    "asyncProcessing",
    "offline",
    "supplyIdle",
    "supportShell",
    "openFileSelector",
    "editFile",
    "closeFileSelector",
    "startStopProcess",
    "shellCategory",
    "sendVstMidiEventFlagIsRealtime",
};

}  // namespace

bool hostIsVst24(AudioEffectX& effect) {
    return Cached(vst24, [&] { return effect.getMasterVersion() == 2400; });
}

bool hostIsAbleton(AudioEffectX& effect) {
    return Cached(ableton, [&] { return effect.getHostVendorString() == "Ableton"; });
}

bool hostDropsEarlyEvents(AudioEffectX& effect) {
    const std::string product = effect.getHostProductString();
    return std::find(std::begin(productsThatDropEarlyEvents), std::end(productsThatDropEarlyEvents),
                     product) != std::end(productsThatDropEarlyEvents);
}

std::string HostFacts(AudioEffectX& effect) {
    std::ostringstream lines;
    lines << "\n"
          << "getMasterVersion: " << effect.getMasterVersion() << "\n"
          << "getHostVendorString: " << effect.getHostVendorString() << "\n"
          << "getHostVendorVersion: " << effect.getHostVendorVersion() << "\n"
          << "getHostProductString: " << effect.getHostProductString() << "\n"
          << "\n";
    for (const char* const capability : hostCapabilities)
        lines << std::left << std::setw(31) << capability << ": " << effect.canHostDo(capability) << "\n";
    lines << "\n";
    return lines ? lines.str() : std::string();  // no half of it where memory is short
}
