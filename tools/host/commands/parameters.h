#pragma once
#include "tools/host/commands/command.h"
#include "tools/host/renderer.h"

// The option --param, for each command that has it: its texts, and what they mean for this plug-in.
void AddParameterOption(CLI::App& command, std::vector<std::string>& texts);

// Errors: UsageError.
std::vector<ParameterSetting> ParseParameters(const std::vector<std::string>& texts,
                                              const PluginModule& module);
