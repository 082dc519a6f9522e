// The three names by which VST 3 hosts find the plug-in.
#include "vst3/factory.h"

extern "C" __attribute__((visibility("default"))) bool ModuleEntry(void* library);
extern "C" __attribute__((visibility("default"))) bool ModuleExit();

Steinberg::IPluginFactory* GetPluginFactory() {
    return Vst3Factory();
}
bool ModuleEntry(void*) {
    return true;
}
bool ModuleExit() {
    return true;
}
