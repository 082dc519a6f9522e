#pragma once
#include "delivery/rt_recording.h"
#include "module/plugin_entry.h"
#include "plugin/gui_plugin.h"
#include "tests/support/host.h"

inline TRTRecording& RecordingOf(CORVAguivst& plugin) {
    TRTRecording* found = nullptr;
    plugin.noteRecorder.outputs.ForEach([&](TNoteOut& output) {
        if (auto* const recording = dynamic_cast<TRTRecording*>(&output)) found = recording;
    });
    return *found;
}

// A host that opens the linked plug-in at its construction.
class LinkedHost : public Host {
public:
    explicit LinkedHost(std::intptr_t hostRate = 44100) : Host(hostRate) {}
    CORVAguivst& plugin = Opened();

private:
    CORVAguivst& Opened() {
        if (!Open(OpenPlugin)) throw std::runtime_error("the plug-in does not open");
        return Object<CORVAguivst>();
    }
};
