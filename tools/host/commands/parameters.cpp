#include "tools/host/commands/parameters.h"

#include "tools/host/plugin_facts.h"

void AddParameterOption(CLI::App& command, std::vector<std::string>& texts) {
    command.add_option("--param", texts, "set a parameter by its name or index, 0 to 1; repeatable")
        ->type_name("NAME=VALUE")
        ->allow_extra_args(false);
}

std::vector<ParameterSetting> ParseParameters(const std::vector<std::string>& texts,
                                              const PluginModule& module) {
    std::vector<ParameterSetting> settings;
    if (texts.empty()) return settings;
    const std::vector<std::string> names = ParameterNames(module);
    try {
        for (const std::string& text : texts) settings.push_back(ParseParameter(text, names));
    } catch (const std::invalid_argument& reason) {
        throw UsageError(std::string("--param: ") + reason.what());
    }
    return settings;
}
