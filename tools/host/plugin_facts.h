#pragma once
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "tools/host/hosted_plugin.h"
#include "tools/host/renderer.h"

inline constexpr std::int32_t askingRate = 44100;  // Hz, of an instance that is asked and plays nothing

// What a plug-in says of itself to any host.
struct ParameterFacts {
    std::string name;
    std::string label;    // a unit, as the interface means it
    float value = 0;      // as it stands, 0 to 1 as a rule
    std::string display;  // the value in the plug-in's own words
    bool automatable = false;
};

struct PluginFacts {
    std::string file;
    std::string name;
    std::string product;
    std::string vendor;
    std::int32_t version = 0;           // of the record
    std::int32_t vendorVersion = 0;     // in the maker's own count
    std::int32_t interfaceVersion = 0;  // 2400 for VST 2.4
    std::string uniqueId;               // four characters
    std::string category;
    std::int32_t inputs = 0;  // channels
    std::int32_t outputs = 0;
    std::vector<std::string> programs;
    std::vector<std::string> flags;                           // those that are set, in words
    std::vector<std::pair<std::string, std::int32_t>> canDo;  // 1 yes, -1 no, 0 nothing said
    std::vector<ParameterFacts> parameters;                   // by index
};

PluginFacts AskPlugin(const PluginModule& module);

std::vector<std::string> ParameterNames(const PluginModule& module);

// Everything, for a reader and for a program (one object, one line).
std::string FactsTable(const PluginFacts& facts);
std::string FactsJson(const PluginFacts& facts);

// The parameters that `settings` set, in their order, as the plug-in then shows them.
std::string SettingsTable(const PluginModule& module, const std::vector<ParameterSetting>& settings);
