#pragma once
#include <CLI/CLI.hpp>
#include <filesystem>
#include <vector>

#include "tools/host/output_file.h"

// What the commands that write files share.

void AddForce(CLI::App& command, bool& force);

// GuardOutputs, with UsageError for its error. Nothing has been read or heard when it is called.
void GuardAll(const std::vector<PlannedOutput>& outputs, const std::vector<std::filesystem::path>& inputs,
              bool force);
void GuardOutput(const PlannedOutput& output, const std::vector<std::filesystem::path>& inputs, bool force);
