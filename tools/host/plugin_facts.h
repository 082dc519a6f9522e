#pragma once
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tools/host/hosted_plugin.h"
#include "tools/host/renderer.h"

inline constexpr std::int32_t askingRate = 44100;  // Hz, of an instance that is asked and plays nothing

// What a plug-in says of itself to any host, as one JSON object: its identity, and "parameters" by index.
nlohmann::ordered_json AskPlugin(const PluginModule& module);

std::vector<std::string> ParameterNames(const PluginModule& module);

// Everything, for a reader and for a program (one line).
std::string FactsTable(const nlohmann::ordered_json& facts);
std::string FactsJson(const nlohmann::ordered_json& facts);

// The parameters that `settings` set, in their order, as the plug-in then shows them.
std::string SettingsTable(const PluginModule& module, const std::vector<ParameterSetting>& settings);
