// The three names under which hosts look for one and the same entry point. They live in the module alone: in
// a static library, `main` would become some program's own.
#include "module/plugin_entry.h"

#define ORVA_TEXT_OF_(name) #name
#define ORVA_TEXT_OF(name) ORVA_TEXT_OF_(name)
#define ORVA_EXPORT __attribute__((visibility("default")))

extern "C" {

ORVA_EXPORT AEffect* VSTPluginMain(audioMasterCallback host);
ORVA_EXPORT AEffect* MAIN(audioMasterCallback host);
// The compiler knows `main` as the start of a program; the linker's name is all that a host asks for.
ORVA_EXPORT AEffect* PluginMain(audioMasterCallback host) __asm__(ORVA_TEXT_OF(__USER_LABEL_PREFIX__) "main");

AEffect* VSTPluginMain(audioMasterCallback host) {
    return OpenPlugin(host);
}
AEffect* MAIN(audioMasterCallback host) {
    return OpenPlugin(host);
}
AEffect* PluginMain(audioMasterCallback host) {
    return OpenPlugin(host);
}

}  // extern "C"
