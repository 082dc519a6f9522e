#pragma once
#include "tools/host/commands/command.h"

void AddScore(CLI::App& program, Job& chosen);
