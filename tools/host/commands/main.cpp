// orva-host: a host for the plug-in alone, in a terminal.
#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <numeric>
#include <utility>
#include <vector>

#include "tools/host/commands/command.h"

namespace {

constexpr void (*commands[])(CLI::App&, Job&) = {AddRender, AddLive,    AddEdit, AddShot,
                                                 AddScore,  AddDevices, AddInfo};

// Changes of one letter that make one word of the other.
std::size_t Distance(const std::string& a, const std::string& b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i);
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t replaced = diagonal + (a[i - 1] == b[j - 1] ? 0 : 1);
            diagonal = std::exchange(row[j], std::min({row[j] + 1, row[j - 1] + 1, replaced}));
        }
    }
    return row.back();
}

// Errors: UsageError, with what was meant in all likelihood, where the first word is neither option nor
// command.
void CheckCommand(const CLI::App& program, const std::string& word) {
    std::string nearest;
    for (const CLI::App* const command : program.get_subcommands({})) {
        const std::string& name = command->get_name();
        if (name == word || word.starts_with('-')) return;
        if (nearest.empty() || Distance(word, name) < Distance(word, nearest)) nearest = name;
    }
    if (access(word.c_str(), F_OK) == 0)
        throw UsageError("\"" + word + "\" is a file; to hear it: orva-host render " + word);
    throw UsageError("there is no command \"" + word + "\"; the nearest is " + nearest);
}

int Run(int argc, char** argv) {
    CLI::App program("ORVA Audio To MIDI in a terminal", "orva-host");
    program.require_subcommand(1);
    program.set_version_flag("--version", "orva-host " ORVA_VERSION);
    Job chosen;
    for (const auto add : commands) add(program, chosen);
    if (argc > 1) CheckCommand(program, argv[1]);
    try {
        program.parse(argc, argv);
    } catch (const CLI::Success& help) {
        return program.exit(help);
    } catch (const CLI::ParseError& fault) {
        throw UsageError(fault.what());
    }
    const int result = chosen();
    std::cout.flush();
    if (!std::cout) throw std::runtime_error("standard output: cannot be written");
    return result;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return Run(argc, argv);
    } catch (const UsageError& fault) {
        ReportError(std::string(fault.what()) + "; try --help");
        return exitWrongUsage;
    } catch (const std::exception& fault) {
        ReportError(fault.what());
        return exitFailed;
    }
}
