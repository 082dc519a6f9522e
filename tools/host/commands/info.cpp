#include "tools/host/commands/info.h"

#include <iostream>
#include <memory>

#include "tools/host/plugin_facts.h"

namespace {

struct InfoOptions {
    std::string plugin;
    bool json = false;
};

int Info(const InfoOptions& options) {
    const PluginModule module(FindPlugin(options.plugin));
    const PluginFacts facts = AskPlugin(module);
    std::cout << (options.json ? FactsJson(facts) : FactsTable(facts));
    return exitDone;
}

}  // namespace

void AddInfo(CLI::App& program, Job& chosen) {
    const auto options = std::make_shared<InfoOptions>();
    CLI::App* const command =
        program.add_subcommand("info", "what the plug-in says of itself, and its parameters");
    command->add_option("--plugin", options->plugin, "the plug-in's file")->type_name("FILE");
    command->add_flag("--json", options->json, "one JSON object instead of a table");
    command->callback([options, &chosen] { chosen = [options] { return Info(*options); }; });
}
