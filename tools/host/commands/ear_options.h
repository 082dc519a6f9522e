#pragma once
#include "tools/host/commands/command.h"
#include "tools/host/ear_settings.h"

// The options --ear, --threshold and --level, for each command that has them: their texts, and what they
// mean.
struct EarTexts {
    std::string ear;          // classic, live or file; empty: the command's own choice
    std::string level = "0";  // auto, or dB
    float threshold = 0;
};

// `usual` is the name of the ear that the command has without the option.
void AddEarOptions(CLI::App& command, EarTexts& texts, const std::string& usual);

// Errors: UsageError.
EarSettings ParseEar(const EarTexts& texts, const std::string& usual);
