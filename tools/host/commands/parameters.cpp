#include "tools/host/commands/parameters.h"

#include <strings.h>

#include <algorithm>
#include <fstream>
#include <iterator>

#include "parameters/parameters.h"
#include "parameters/program_file.h"
#include "parameters/starting_points.h"
#include "tools/host/hosted_plugin.h"
#include "tools/host/plugin_facts.h"
#include "tools/host/read_number.h"

namespace {

std::int32_t FindParameter(const std::string& name, const std::vector<std::string>& names) {
    const auto named = std::find_if(names.begin(), names.end(), [&](const std::string& known) {
        return strcasecmp(known.c_str(), name.c_str()) == 0;
    });
    if (named != names.end()) return static_cast<std::int32_t>(named - names.begin());
    std::int32_t index = 0;
    if (ReadNumber(name, index) && index >= 0 && static_cast<std::size_t>(index) < names.size()) return index;
    throw std::invalid_argument("no parameter is called \"" + name + "\"; orva-host info lists them");
}

// NAME=VALUE: a value in the parameter's range, or else a text that the plug-in itself reads, such as "-30
// dB".
ParameterSetting ParseParameter(const std::string& text, const std::vector<std::string>& names,
                                HostedPlugin& plugin) {
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos) throw std::invalid_argument("\"" + text + "\" is not NAME=VALUE");
    const std::int32_t index = FindParameter(text.substr(0, equals), names);
    std::string typed = text.substr(equals + 1);
    const float highest = ParameterMaximum(index);
    float value = 0;
    if (ReadNumber(typed, value) && value >= 0 && value <= highest) return {index, value};
    if (plugin.Dispatch(effString2Parameter, index, 0, typed.data()) != 0)
        return {index, plugin.Parameter(index)};
    throw std::invalid_argument(
        "\"" + text + "\" is out of range: " + names[static_cast<std::size_t>(index)] + " takes 0 to " +
        std::to_string(static_cast<int>(highest)) + ", or a text like \"" +
        plugin.Text(effGetParamDisplay, index) + "\" where the plug-in reads it");
}

std::vector<ParameterSetting> ReadPreset(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(file)), {});
    if (!file) throw std::invalid_argument(path + " cannot be read");
    try {
        return ReadProgramFile(bytes);
    } catch (const std::invalid_argument& fault) {
        throw std::invalid_argument(path + ": " + fault.what());
    }
}

}  // namespace

void AddParameterOptions(CLI::App& command, ParameterTexts& texts) {
    command
        .add_option("--for", texts.instrument,
                    "begin with settings that suit an instrument: " + StartingPointNames() +
                        ";\nnotes outside its reach are not heard, and --param has the last word")
        ->type_name("INSTRUMENT");
    command.add_option("--preset", texts.preset, "begin with the program that a VST 2 host has saved (.fxp)")
        ->type_name("FILE")
        ->excludes("--for");
    command
        .add_option("--param", texts.values,
                    "set a parameter by its name or index: 0 to 1, or a text as the plug-in\nshows it, "
                    "\"Sensitivity=-30 dB\"; repeatable")
        ->type_name("NAME=VALUE")
        ->allow_extra_args(false);
}

std::vector<ParameterSetting> ParseParameters(const ParameterTexts& texts, const PluginModule& module,
                                              Ear ear) {
    std::vector<ParameterSetting> settings;
    if (!texts.instrument.empty())
        settings = ParseOption("--for", [&] { return SettingsFor(texts.instrument); });
    if (ear != Ear::classic) settings = ReachOf(std::move(settings));
    if (!texts.preset.empty()) settings = ParseOption("--preset", [&] { return ReadPreset(texts.preset); });
    if (texts.values.empty()) return settings;
    const std::vector<std::string> names = ParameterNames(module);
    HostedPlugin plugin(module, askingRate, "ORVA", nullptr);
    for (const std::string& text : texts.values)
        settings.push_back(ParseOption("--param", [&] { return ParseParameter(text, names, plugin); }));
    return settings;
}
