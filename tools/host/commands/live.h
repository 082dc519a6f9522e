#pragma once
#include "tools/host/commands/command.h"

// orva-host live: between the ports of a sound server, until a signal or the user ends it.
void AddLive(CLI::App& program, Job& chosen);
