#pragma once
#include <cstring>

#include <lv2/core/lv2.h>

// What a host offers under `uri`, or null. `features` is the host's list, closed by a null; it may be null,
// and some hosts put features without a name into it.
template <typename Offered>
Offered* Feature(const LV2_Feature* const* features, const char* uri) {
    for (; features != nullptr && *features != nullptr; ++features)
        if ((*features)->URI != nullptr && std::strcmp((*features)->URI, uri) == 0)
            return static_cast<Offered*>((*features)->data);
    return nullptr;
}
