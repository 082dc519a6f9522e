#pragma once
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "module/plugin_entry.h"
#include "plugin/gui_plugin_ex.h"
#include "tests/support/tones.h"
#include "vst2/records.h"

// One instance of the plug-in as a host holds it: what is called goes through its record.
//
// Threads: as the plug-in's own.
class Instance {
public:
    explicit Instance(AEffect* opened) : effect(opened) {}
    explicit Instance(audioMasterCallback host) : effect(OpenPlugin(host)) {}
    Instance(audioMasterCallback host, EditorFactory factory)
        : effect((new CORVAguivstEx(host, factory))->getAeffect()) {}
    ~Instance() { Close(); }
    Instance(const Instance&) = delete;
    Instance& operator=(const Instance&) = delete;

    void Close() {
        if (effect != nullptr) Call(effClose);
        effect = nullptr;
    }
    std::intptr_t Call(std::int32_t opcode, std::int32_t index = 0, std::intptr_t value = 0,
                       void* ptr = nullptr, float opt = 0) const {
        return effect->dispatcher(effect, opcode, index, value, ptr, opt);
    }
    void Set(std::int32_t index, float value) const { effect->setParameter(effect, index, value); }
    float Get(std::int32_t index) const { return effect->getParameter(effect, index); }
    std::string Text(std::int32_t opcode, std::int32_t index = 0) const {
        char text[256] = {};
        Call(opcode, index, 0, text);
        return text;
    }
    // False unless what comes out is what went in.
    bool Play(std::vector<float>& audio) const {
        std::vector<float> out(audio.size());
        float* in = audio.data();
        float* to = out.data();
        effect->processReplacing(effect, &in, &to, static_cast<std::int32_t>(audio.size()));
        return std::memcmp(audio.data(), out.data(), audio.size() * sizeof(float)) == 0;
    }
    // For what only the editor calls. Of an instance that was opened by linked code.
    CORVAguivst& Object() const {
        return dynamic_cast<CORVAguivst&>(*static_cast<AudioEffect*>(effect->object));
    }

    AEffect* effect;
};
