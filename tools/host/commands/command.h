#pragma once
#include <CLI/CLI.hpp>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

// What all commands of orva-host share. A command is one file pair with one Add function: it adds a
// subcommand with its options to the program, and when that is chosen on the command line, sets what is to
// run.

enum ExitCode : int { exitDone = 0, exitFailed = 1, exitWrongUsage = 2 };

using Job = std::function<int()>;  // gives the program's exit code
using AddCommand = void (*)(CLI::App& program, Job& chosen);

// A command line that reads well and makes no sense; the text says why.
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Accepts numbers in this range, both ends included; NaN is in none.
CLI::Validator NumberFrom(double lowest, double highest);

// One line on standard error: what it is about, and the reason. Control characters in either are escaped, so
// that it stays one line.
void ReportError(std::string_view subject, std::string_view reason);
void ReportError(std::string_view text);  // where the text names its subject itself
