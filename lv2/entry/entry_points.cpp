// The two names by which LV2 hosts find the plug-in and its window.
#include "lv2/descriptors.h"

LV2_SYMBOL_EXPORT const LV2_Descriptor* lv2_descriptor(uint32_t index) {
    return index == 0 ? PluginDescriptor() : nullptr;
}

LV2_SYMBOL_EXPORT const LV2UI_Descriptor* lv2ui_descriptor(uint32_t index) {
    return index == 0 ? WindowDescriptor() : nullptr;
}
