#pragma once
#include "clap/interface.h"

// What makes instances, by its name in the interface; null for any other name. Threads: [any].
const void* ClapFactory(const char* id);
