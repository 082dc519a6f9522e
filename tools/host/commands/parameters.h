#pragma once
#include "tools/host/commands/command.h"
#include "tools/host/renderer.h"

// The options --for, --preset and --param, for each command that has them: their texts, and what they mean
// for this plug-in.
struct ParameterTexts {
    std::string instrument;           // a starting point; empty: the plug-in's own settings
    std::string preset;               // a program of VST 2 hosts, as a file
    std::vector<std::string> values;  // NAME=VALUE
};

void AddParameterOptions(CLI::App& command, ParameterTexts& texts);

// In the order in which they are to be set: the values last. The starting points are made for the classic
// ear: for another, of an instrument's settings only its reach counts, and a threshold that is no parameter
// (ParseEar). Errors: UsageError.
std::vector<ParameterSetting> ParseParameters(const ParameterTexts& texts, const PluginModule& module,
                                              Ear ear);
