#pragma once
#include <string>

// The three files that describe the plug-in to LV2 hosts, in Turtle.

// What a host reads of every plug-in it finds: that this one is there, and where the rest stands.
std::string Manifest(const std::string& pluginFile);
// The settings to begin with, as presets.
std::string Presets();
// All the rest, ports above all. `minorVersion` is a number.
std::string Description(const std::string& minorVersion);
