#include <iostream>
#include <memory>

#include "parameters/starting_points.h"
#include "tools/host/commands/command.h"
#include "tools/host/commands/parameters.h"
#include "tools/host/plugin_facts.h"

namespace {

struct InfoOptions {
    std::string plugin;
    bool json = false;
    ParameterTexts parameters;  // of which only the instrument is given here
};

int Info(const InfoOptions& options) {
    const PluginModule module(FindPlugin(options.plugin));
    if (!options.parameters.instrument.empty()) {
        std::cout << SettingsTable(module, ParseParameters(options.parameters, module, Ear::classic))
                  << "for a refined ear only the bars that are shut, and --threshold "
                  << RefinedThresholdFor(options.parameters.instrument) << '\n';
        return exitDone;
    }
    const nlohmann::ordered_json facts = AskPlugin(module);
    std::cout << (options.json ? FactsJson(facts) : FactsTable(facts));
    return exitDone;
}

}  // namespace

void AddInfo(CLI::App& program, Job& chosen) {
    const auto options = std::make_shared<InfoOptions>();
    CLI::App* const command =
        program.add_subcommand("info", "what the plug-in says of itself, and its parameters");
    command->add_option("--plugin", options->plugin, "the plug-in's file")->type_name("FILE");
    CLI::Option* const json =
        command->add_flag("--json", options->json, "one JSON object instead of a table");
    command
        ->add_option(
            "--for", options->parameters.instrument,
            "instead, what --for of the other commands sets for an instrument: " + StartingPointNames())
        ->type_name("INSTRUMENT")
        ->excludes(json);
    command->callback([options, &chosen] { chosen = [options] { return Info(*options); }; });
}
