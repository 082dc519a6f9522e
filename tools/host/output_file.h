#pragma once
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

// Files that the program leaves behind.

// Writes the whole of `content`, or nothing: it is written beside `path` and then takes its place, so that
// nobody ever sees half of it. A pipe or a device is written straight. Errors: std::runtime_error with path
// and reason.
void WriteWhole(const std::filesystem::path& path, std::string_view content);

// The file that each input's output goes to: `target` itself for a single input, FOLDER/NAME`extension` where
// the target is an existing folder, NAME being the input's name without its own extension. Errors:
// std::invalid_argument with the reason, when several inputs have no folder, two outputs would be the same
// file, or an output would replace one of the inputs.
std::vector<std::filesystem::path> OutputPaths(const std::vector<std::string>& inputs,
                                               const std::filesystem::path& target,
                                               const std::string& extension);
