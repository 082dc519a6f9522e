#include "module/plugin_entry.h"

#include <memory>

#include "base/float_environment.h"
#include "editor/editor_factory.h"
#include "plugin/gui_plugin_ex.h"

AEffect* OpenPlugin(audioMasterCallback host) noexcept {
    if (host == nullptr) return nullptr;
    const FloatEnvironment hosts;
    try {
        if (host(nullptr, audioMasterVersion, 0, 0, nullptr, 0) == 0) return nullptr;
        auto effect = std::make_unique<CORVAguivstEx>(host, MakeGuiEditor);
        if (editorCreationFailed) return nullptr;
        effect->usePreferredHearing();
        effect->usePreferredNoteDates();
        return effect.release()->getAeffect();
    } catch (...) {
        return nullptr;
    }
}
