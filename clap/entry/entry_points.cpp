// The name by which CLAP hosts find the plug-in.
#include "clap/factory.h"

extern "C" __attribute__((visibility("default"))) const clap_plugin_entry_t clap_entry;
extern "C" const clap_plugin_entry_t clap_entry = {CLAP_VERSION, [](const char*) { return true; }, [] {},
                                                   ClapFactory};
