#pragma once
#include <CLI/CLI.hpp>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "tools/host/output_file.h"

// What all commands of orva-host share. A command is a source with one Add function: it adds a subcommand
// with its options to the program, and when that is chosen on the command line, sets what is to run.

enum ExitCode : int { exitDone = 0, exitFailed = 1, exitWrongUsage = 2 };

using Job = std::function<int()>;                // gives the program's exit code
void AddRender(CLI::App& program, Job& chosen);  // the notes of recordings, as tables and files
void AddLive(CLI::App& program, Job& chosen);    // between the ports of a sound server
void AddEdit(CLI::App& program, Job& chosen);    // the window, to work in
void AddShot(CLI::App& program, Job& chosen);    // a picture of one of its pages
void AddScore(CLI::App& program, Job& chosen);
void AddDevices(CLI::App& program, Job& chosen);
void AddInfo(CLI::App& program, Job& chosen);  // what the plug-in says of itself, and its parameters

// A command line that reads well and makes no sense; the text says why.
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// What `parse` returns; what it finds invalid is reported as a value of this option.
template <typename Parse>
auto ParseOption(const char* option, Parse parse) {
    try {
        return parse();
    } catch (const std::invalid_argument& reason) {
        throw UsageError(std::string(option) + ": " + reason.what());
    }
}

// The number of the MIDI device with this name, or with this number counted from 1. Errors: UsageError.
std::uint32_t FindDevice(const std::string& name);

// Accepts numbers in this range, both ends included; NaN is in none.
CLI::Validator NumberFrom(double lowest, double highest);

void AddForce(CLI::App& command, bool& force);  // the option of commands that write files

// GuardOutputs, with UsageError for its error. Nothing has been read or heard when it is called.
void Guard(const std::vector<PlannedOutput>& outputs, const std::vector<std::filesystem::path>& inputs,
           bool force);

// One line on standard error: what it is about, and the reason. Control characters in either are escaped, so
// that it stays one line.
void ReportError(std::string_view subject, std::string_view reason);
void ReportError(std::string_view text);  // where the text names its subject itself
