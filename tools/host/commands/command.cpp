#include "tools/host/commands/command.h"

#include <iostream>
#include <sstream>

#include "tools/host/printable.h"

void ReportError(std::string_view subject, std::string_view reason) {
    std::string text(subject);
    text += ": ";
    ReportError(text.append(reason));
}

void ReportError(std::string_view text) {
    std::cerr << "orva-host: " + Printable(text) + '\n' << std::flush;
}

void AddForce(CLI::App& command, bool& force) {
    command.add_flag("--force", force, "write even over files of another kind");
}

void Guard(const std::vector<PlannedOutput>& outputs, const std::vector<std::filesystem::path>& inputs,
           bool force) {
    try {
        GuardOutputs(outputs, inputs, force);
    } catch (const std::invalid_argument& reason) {
        throw UsageError(reason.what());
    }
}

CLI::Validator NumberFrom(double lowest, double highest) {
    return CLI::Validator(
        [lowest, highest](const std::string& text) {
            double number = 0;
            const bool isIn =
                CLI::detail::lexical_cast(text, number) && number >= lowest && number <= highest;
            std::ostringstream range;
            range << lowest << " to " << highest;
            return isIn ? std::string() : text + " is not a number from " + range.str();
        },
        "");
}
