#include "tools/host/commands/parameters.h"

#include "tools/host/plugin_facts.h"
#include "tools/host/starting_points.h"

void AddParameterOptions(CLI::App& command, ParameterTexts& texts) {
    command
        .add_option("--for", texts.instrument,
                    "begin with settings that suit an instrument: " + StartingPointNames() +
                        ";\nnotes outside its reach are not heard, and --param has the last word")
        ->type_name("INSTRUMENT");
    command.add_option("--param", texts.values, "set a parameter by its name or index, 0 to 1; repeatable")
        ->type_name("NAME=VALUE")
        ->allow_extra_args(false);
}

std::vector<ParameterSetting> ParseParameters(const ParameterTexts& texts, const PluginModule& module) {
    std::vector<ParameterSetting> settings;
    const char* option = "--for: ";
    try {
        if (!texts.instrument.empty()) settings = SettingsFor(texts.instrument);
        option = "--param: ";
        if (texts.values.empty()) return settings;
        const std::vector<std::string> names = ParameterNames(module);
        for (const std::string& text : texts.values) settings.push_back(ParseParameter(text, names));
    } catch (const std::invalid_argument& reason) {
        throw UsageError(option + std::string(reason.what()));
    }
    return settings;
}
