#pragma once
#include <cstdint>
#include <functional>
#include <string>
#include <utility>

#include "base/relaxed.h"
#include "base/scoped.h"
#include "vst2/records.h"

// The host's side of the VST 2 interface for one instance, whether it was linked or loaded: it answers what
// the plug-in asks, and calls it.
//
// Threads: as the plug-in's own; the answers are given on the thread that asks.
class PluginHost {
public:
    PluginHost(const PluginHost&) = delete;
    PluginHost& operator=(const PluginHost&) = delete;

    const AEffect& Record() const { return *effect; }
    void SetParameter(std::int32_t index, float value) { effect->setParameter(effect, index, value); }
    float Parameter(std::int32_t index) const { return effect->getParameter(effect, index); }
    std::intptr_t Dispatch(std::int32_t opcode, std::int32_t index = 0, std::intptr_t value = 0,
                           void* ptr = nullptr, float opt = 0) const {
        return effect->dispatcher(effect, opcode, index, value, ptr, opt);
    }
    // [ui] Called when the plug-in's window would be that large; the answer is whether it may. Without it,
    // no.
    std::function<bool(std::int32_t width, std::int32_t height)> sizeWindow;

    // What the plug-in writes in answer to one of the opcodes that ask for a text; empty if nothing.
    std::string Text(std::int32_t opcode, std::int32_t index = 0) const;
    // What it says of a capability: 1 yes, -1 no, 0 nothing.
    std::int32_t CanDo(std::string capability) const;

protected:
    // What the plug-in gets to know of its host; where a text is empty, it is not answered.
    struct Identity {
        std::string vendor, product;
        std::intptr_t version = 0;
    };
    PluginHost(std::int32_t newRate, Identity newIdentity)
        : rate(newRate), identity(std::move(newIdentity)) {}
    ~PluginHost() = default;

    // `make` gets the callback and returns the record of a new instance, which may ask from inside it.
    template <typename Make>
    void Construct(Make make) {
        const ScopedValue now(underConstruction, this);
        effect = make(&PluginHost::Callback);
        if (effect != nullptr) effect->resvd1 = reinterpret_cast<std::intptr_t>(this);
    }
    void Open();  // and asks what a host asks that takes MIDI: the plug-in's window warns where none did

    virtual void EventsSent(const VstEvents& events) = 0;           // [any]
    virtual void ParameterEdited(std::int32_t index, float value);  // [ui] in the window; applied already

    Relaxed<std::int32_t> rate;  // Hz
    AEffect* effect = nullptr;   // the plug-in's own, until effClose

private:
    static std::intptr_t Callback(AEffect* effect, std::int32_t opcode, std::int32_t index,
                                  std::intptr_t value, void* ptr, float opt);
    std::intptr_t Answer(std::int32_t opcode, std::int32_t index, std::intptr_t value, void* ptr, float opt);

    // Until an instance is constructed there is no record that could lead a callback to its host.
    static thread_local PluginHost* underConstruction;

    const Identity identity;
};
