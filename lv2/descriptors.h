#pragma once
#include <lv2/core/lv2.h>
#include <lv2/ui/ui.h>

// The plug-in and its window as tables of C functions. No exception leaves them.
//
// Threads: as LV2 has it.
const LV2_Descriptor* PluginDescriptor();
const LV2UI_Descriptor* WindowDescriptor();
