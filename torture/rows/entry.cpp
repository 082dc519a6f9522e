// A host opens the plug-in, whatever that host is like.
#include <dlfcn.h>

#include <cstring>

#include "torture/row.h"
#include "vst2/records.h"

namespace {

std::intptr_t hostVersion = 0;
enum TextHabit { terminated, full, silent, unterminated } habit = terminated;

// Writes at most the 64 bytes that a text's reader must have room for.
std::intptr_t Host(AEffect*, std::int32_t opcode, std::int32_t, std::intptr_t, void* text, float) {
    if (opcode == audioMasterVersion) return hostVersion;
    if (opcode != audioMasterGetVendorString && opcode != audioMasterGetProductString) return 0;
    if (habit == silent) return 0;
    std::memset(text, 'x', habit == terminated ? 3 : 64);
    if (habit == terminated) static_cast<char*>(text)[3] = '\0';
    if (habit == full) static_cast<char*>(text)[63] = '\0';
    return 1;
}

constexpr const char* names[] = {"VSTPluginMain", "MAIN", "main"};
constexpr std::intptr_t versions[] = {0, 1, 2300, 2400, 2401, -1};

void TryEntry(Trial& trial) {
    std::uint64_t rest = trial.number;
    const char* const name = names[rest % 3];
    hostVersion = versions[rest / 3 % 6];
    habit = static_cast<TextHabit>(rest / 18 % 4);
    void* const file = dlopen(ORVA_MODULE_FILE, RTLD_NOW | RTLD_LOCAL);
    trial.Require(file != nullptr, "the module does not load");
    const auto entry = reinterpret_cast<AEffect* (*)(audioMasterCallback)>(dlsym(file, name));
    trial.Require(entry != nullptr, "no such entry point");
    trial.Require(entry(nullptr) == nullptr, "opened for no host");
    AEffect* const effect = entry(Host);
    trial.Require((effect != nullptr) == (hostVersion != 0), "opened for version 0, or not for another");
    if (effect == nullptr) return;
    trial.Require(effect->magic == kEffectMagic && effect->uniqueID == FourCharacters('O', 'R', 'V', '1') &&
                      effect->numParams == 96 && effect->numInputs == 1 && effect->numOutputs == 1,
                  "not the record of this plug-in");
    const std::int32_t flags = effFlagsHasEditor | effFlagsCanReplacing | effFlagsCanDoubleReplacing |
                               (hostVersion == 2400 ? 0 : effFlagsCanMono);
    trial.Require(effect->flags == flags, "flags " + std::to_string(effect->flags));
    effect->dispatcher(effect, effClose, 0, 0, nullptr, 0);
    dlclose(file);
}

const Registered entry({"LIF-1", "opens for every host but none and one of version 0", inRelease | inAddress,
                        72, 1, 20, TryEntry});

}  // namespace
