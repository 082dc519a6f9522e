#pragma once
#include "pluginterfaces/base/ipluginbase.h"

// What makes instances. Threads: [any]; it is never deleted.
Steinberg::IPluginFactory* Vst3Factory();
