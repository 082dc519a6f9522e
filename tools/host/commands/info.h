#pragma once
#include "tools/host/commands/command.h"

// orva-host info: what the plug-in says of itself, and its parameters.
void AddInfo(CLI::App& program, Job& chosen);
