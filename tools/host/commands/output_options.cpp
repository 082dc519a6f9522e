#include "tools/host/commands/output_options.h"

#include "tools/host/commands/command.h"

void AddForce(CLI::App& command, bool& force) {
    command.add_flag("--force", force, "write even over files of another kind");
}

void GuardAll(const std::vector<PlannedOutput>& outputs, const std::vector<std::filesystem::path>& inputs,
              bool force) {
    try {
        GuardOutputs(outputs, inputs, force);
    } catch (const std::invalid_argument& reason) {
        throw UsageError(reason.what());
    }
}

void GuardOutput(const PlannedOutput& output, const std::vector<std::filesystem::path>& inputs, bool force) {
    GuardAll({output}, inputs, force);
}
