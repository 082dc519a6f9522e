#pragma once
#include <optional>

#include "tools/host/commands/command.h"
#include "tools/host/ear_settings.h"

// The options --ear, --threshold and --level, for each command that has them: their texts, and what they
// mean.
struct EarTexts {
    std::string ear;          // classic, live or file; empty: the command's own choice
    std::string level = "0";  // auto, or dB
    std::optional<float> threshold;
};

// `usual` is the name of the ear that the command has without the option.
void AddEarOptions(CLI::App& command, EarTexts& texts, const std::string& usual);

// The threshold is that of the instrument of --for, if it has one and no other is given. Errors: UsageError.
EarSettings ParseEar(const EarTexts& texts, const std::string& usual, const std::string& instrument);
