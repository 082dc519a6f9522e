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

// The file that each input's output goes to. The target is
//   a pattern with {name}, the input's name without folder and extension, or {dir}, its folder ("." where it
//   was given without one): both are filled in;
//   an existing folder: FOLDER/NAME`extension`;
//   anything else, for a single input only: that file.
// Errors: std::invalid_argument with the reason, when several inputs have neither pattern nor folder, two
// outputs would be the same file, or an output would replace one of the inputs.
std::vector<std::filesystem::path> OutputPaths(const std::vector<std::string>& inputs,
                                               const std::filesystem::path& target,
                                               const std::string& extension);

bool IsPattern(const std::string& target);

// A file that a run is about to write, and by what bytes files of its kind begin.
struct PlannedOutput {
    std::string option;  // that asked for it, for messages
    std::filesystem::path path;
    std::string_view firstBytes;
};
inline constexpr std::string_view midiFirstBytes = "MThd";
inline constexpr std::string_view scoreFirstBytes = "TNotes";
inline constexpr std::string_view musicXmlFirstBytes = "<?xml";
inline constexpr std::string_view pictureFirstBytes = "\x89PNG";

// Keeps what exists from being overwritten by mistake. Errors: std::invalid_argument with the reason, where
// an output has no name, is one of `inputs`, is written twice in this run, or, without `force`, exists and is
// no file of its own kind. Empty files, pipes and devices may be written.
void GuardOutputs(const std::vector<PlannedOutput>& outputs, const std::vector<std::filesystem::path>& inputs,
                  bool force);

// Makes the folders that a pattern's output lies in. Errors: std::runtime_error with path and reason.
void MakeFolderOf(const std::filesystem::path& path);

// Errors: std::runtime_error with path and reason, where files cannot be written in the folder of `path`.
void CheckFolderOf(const std::filesystem::path& path);

// An output is there, whole and not older than the input it was made of.
bool IsUpToDate(const std::filesystem::path& output, const std::filesystem::path& input);
