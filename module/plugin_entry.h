#pragma once
#include "vst2/records.h"

// Builds a plug-in object for a host. Null when the host answers version 0, when there is no callback, or
// when the object cannot be built; no exception leaves. The host owns the object, by way of effClose.
//
// Threads: [any].
AEffect* OpenPlugin(audioMasterCallback host) noexcept;
