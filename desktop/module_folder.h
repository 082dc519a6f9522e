#pragma once
#include <filesystem>

// The folder of the file that this code was loaded from, the plug-in's within a host; empty where the system
// does not know. [any]
std::filesystem::path ModuleFolder();
