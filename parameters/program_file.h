#pragma once
#include <string>
#include <vector>

#include "parameters/parameters.h"

// A program of the plug-in as VST 2 hosts keep it in a file, .fxp: the 96 values, under a name. Its fields
// are 32 bits wide, most significant byte first:
//
//   "CcnK", bytes that follow, "FxCk", 1, the plug-in's identity, its version, 96, the name in 28 bytes,
//   values
//
// Threads: pure functions, [any] but [audio].

// All parameters have their initial values but for `settings`.
std::string ProgramFile(const std::string& name, const std::vector<ParameterSetting>& settings);

// All values of it. Errors: std::invalid_argument where the bytes are no program of this plug-in.
std::vector<ParameterSetting> ReadProgramFile(const std::string& bytes);
