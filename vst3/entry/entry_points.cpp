// The three names by which VST 3 hosts find the plug-in.
#include "vst3/factory.h"

#define EXPORTED extern "C" __attribute__((visibility("default")))

EXPORTED Steinberg::IPluginFactory* GetPluginFactory();
EXPORTED bool ModuleEntry(void* library);
EXPORTED bool ModuleExit();

Steinberg::IPluginFactory* GetPluginFactory() {
    return Vst3Factory();
}
bool ModuleEntry(void*) {
    return true;
}
bool ModuleExit() {
    return true;
}
