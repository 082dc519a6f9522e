#pragma once
#include "tools/host/commands/command.h"

void AddEdit(CLI::App& program, Job& chosen);  // the window, to work in
void AddShot(CLI::App& program, Job& chosen);  // a picture of one of its pages
