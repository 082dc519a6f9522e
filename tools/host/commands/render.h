#pragma once
#include "tools/host/commands/command.h"

// orva-host render: the notes of recordings, as a table, JSON lines and CSV.
void AddRender(CLI::App& program, Job& chosen);
