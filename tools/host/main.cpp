// orva-host: a host for the plug-in alone, in a terminal.
#include <iostream>

#include "tools/host/commands/command.h"
#include "tools/host/commands/devices.h"
#include "tools/host/commands/edit.h"
#include "tools/host/commands/info.h"
#include "tools/host/commands/live.h"
#include "tools/host/commands/render.h"
#include "tools/host/commands/score.h"

namespace {

constexpr AddCommand commands[] = {AddRender, AddLive, AddEdit, AddShot, AddScore, AddDevices, AddInfo};

int Run(int argc, char** argv) {
    CLI::App program("ORVA Audio To MIDI in a terminal", "orva-host");
    program.require_subcommand(1);
    Job chosen;
    for (const AddCommand add : commands) add(program, chosen);
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
