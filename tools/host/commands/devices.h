#pragma once
#include <cstdint>
#include <string>

#include "tools/host/commands/command.h"

void AddDevices(CLI::App& program, Job& chosen);

// The number of the MIDI device with this name, or with this number counted from 1. Errors: UsageError.
std::uint32_t FindDevice(const std::string& name);
