#include "tools/host/plugin_facts.h"

#include <array>
#include <cctype>
#include <charconv>
#include <nlohmann/json.hpp>
#include <sstream>

#include "tools/host/text_table.h"

namespace {

struct FlagName {
    std::int32_t flag;
    const char* words;
};
constexpr std::array flagNames = {
    FlagName{effFlagsHasEditor, "has a window"},
    FlagName{effFlagsCanMono, "mono"},
    FlagName{effFlagsCanReplacing, "replacing process"},
    FlagName{effFlagsCanDoubleReplacing, "double precision"},
    FlagName{effFlagsProgramChunks, "state in chunks"},
    FlagName{effFlagsIsSynth, "instrument"},
    FlagName{effFlagsNoSoundInStop, "silent when stopped"},
};

constexpr std::array categories = {"unknown", "effect", "instrument", "analysis"};

constexpr std::array capabilities = {
    "sendVstEvents",      "sendVstMidiEvent", "sendVstTimeInfo", "receiveVstEvents", "receiveVstMidiEvent",
    "receiveVstTimeInfo", "midiProgramNames", "offline",         "bypass",
};

std::string FourLetters(std::int32_t id) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        const auto byte = static_cast<unsigned char>(static_cast<std::uint32_t>(id) >> shift & 0xFFU);
        text += std::isprint(byte) != 0 ? static_cast<char>(byte) : '.';
    }
    return text;
}

// The fewest digits that give the same value back.
std::string ShortNumber(float value) {
    std::array<char, 64> text{};
    return {text.data(), std::to_chars(text.data(), text.data() + text.size(), value).ptr};
}

// Such that it prints as shortly: 0.87, not 0.8700000047683716.
double ShortDouble(float value) {
    const std::string text = ShortNumber(value);
    double number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

// 2400 is written 2.4.
std::string InterfaceName(std::int32_t version) {
    return "VST " + std::to_string(version / 1000) + "." + std::to_string(version % 1000 / 100);
}

std::string Joined(const std::vector<std::string>& texts) {
    std::string all;
    for (const std::string& text : texts) all += (all.empty() ? "" : ", ") + text;
    return all.empty() ? "none" : all;
}

// The capabilities to which the plug-in gives this answer.
std::vector<std::string> Answered(const PluginFacts& facts, std::int32_t answer) {
    std::vector<std::string> texts;
    for (const auto& [capability, given] : facts.canDo)
        if (given == answer) texts.push_back(capability);
    return texts;
}

}  // namespace

PluginFacts AskPlugin(const PluginModule& module) {
    HostedPlugin plugin(module, askingRate, "ORVA", {});
    const AEffect& record = plugin.Record();
    PluginFacts facts;
    facts.file = module.Path().string();
    facts.name = plugin.Text(effGetEffectName);
    facts.product = plugin.Text(effGetProductString);
    facts.vendor = plugin.Text(effGetVendorString);
    facts.version = record.version;
    facts.vendorVersion = static_cast<std::int32_t>(plugin.Dispatch(effGetVendorVersion));
    facts.interfaceVersion = static_cast<std::int32_t>(plugin.Dispatch(effGetVstVersion));
    facts.uniqueId = FourLetters(record.uniqueID);
    const auto category = static_cast<std::size_t>(plugin.Dispatch(effGetPlugCategory));
    facts.category = category < categories.size() ? categories[category] : "other";
    facts.inputs = record.numInputs;
    facts.outputs = record.numOutputs;
    // One name can be had without switching programs; this host switches none.
    if (record.numPrograms > 0) facts.programs.push_back(plugin.Text(effGetProgramName));
    for (const FlagName& known : flagNames)
        if ((record.flags & known.flag) != 0) facts.flags.emplace_back(known.words);
    for (const char* capability : capabilities)
        facts.canDo.emplace_back(capability, plugin.CanDo(capability));
    for (std::int32_t index = 0; index < record.numParams; ++index)
        facts.parameters.push_back({plugin.Text(effGetParamName, index), plugin.Text(effGetParamLabel, index),
                                    plugin.Parameter(index), plugin.Text(effGetParamDisplay, index),
                                    plugin.Dispatch(effCanBeAutomated, index) == 1});
    return facts;
}

std::vector<std::string> ParameterNames(const PluginModule& module) {
    std::vector<std::string> names;
    for (ParameterFacts& parameter : AskPlugin(module).parameters) names.push_back(std::move(parameter.name));
    return names;
}

std::string FactsTable(const PluginFacts& facts) {
    std::ostringstream out;
    const auto line = [&](const char* what, const std::string& text) {
        out << what << std::string(14 - std::string(what).size(), ' ') << text << '\n';
    };
    line("name", facts.name);
    line("product", facts.product);
    line("vendor", facts.vendor);
    line("version", std::to_string(facts.version) + ", the vendor's " + std::to_string(facts.vendorVersion));
    line("interface", InterfaceName(facts.interfaceVersion));
    line("unique id", facts.uniqueId);
    line("category", facts.category);
    line("channels", std::to_string(facts.inputs) + " in, " + std::to_string(facts.outputs) + " out");
    line("program", Joined(facts.programs));
    line("flags", Joined(facts.flags));
    line("can do", Joined(Answered(facts, 1)));
    line("cannot do", Joined(Answered(facts, -1)));
    line("no answer on", Joined(Answered(facts, 0)));
    line("file", facts.file);
    out << '\n' << facts.parameters.size() << " parameters\n";

    TextTable table;
    table.columns = {{"index", true}, {"name"}, {"label"}, {"value", true}, {"display"}, {"automation"}};
    for (std::size_t index = 0; index < facts.parameters.size(); ++index) {
        const ParameterFacts& parameter = facts.parameters[index];
        table.rows.push_back({std::to_string(index), parameter.name, parameter.label,
                              ShortNumber(parameter.value), parameter.display,
                              parameter.automatable ? "yes" : "no"});
    }
    out << table;
    return out.str();
}

std::string FactsJson(const PluginFacts& facts) {
    using Json = nlohmann::ordered_json;
    Json canDo = Json::object();
    for (const auto& [capability, answer] : facts.canDo) canDo[capability] = answer;
    Json parameters = Json::array();
    for (std::size_t index = 0; index < facts.parameters.size(); ++index) {
        const ParameterFacts& parameter = facts.parameters[index];
        parameters.push_back({{"index", index},
                              {"name", parameter.name},
                              {"label", parameter.label},
                              {"value", ShortDouble(parameter.value)},
                              {"display", parameter.display},
                              {"automatable", parameter.automatable}});
    }
    const Json all = {{"name", facts.name},
                      {"product", facts.product},
                      {"vendor", facts.vendor},
                      {"version", facts.version},
                      {"vendorVersion", facts.vendorVersion},
                      {"interfaceVersion", facts.interfaceVersion},
                      {"uniqueId", facts.uniqueId},
                      {"category", facts.category},
                      {"inputs", facts.inputs},
                      {"outputs", facts.outputs},
                      {"programs", facts.programs},
                      {"flags", facts.flags},
                      {"canDo", std::move(canDo)},
                      {"parameters", std::move(parameters)},
                      {"file", facts.file}};
    return all.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::string SettingsTable(const PluginModule& module, const std::vector<ParameterSetting>& settings) {
    HostedPlugin plugin(module, askingRate, "ORVA", {});
    TextTable table;
    table.columns = {{"index", true}, {"name"}, {"value", true}, {"display"}};
    for (const ParameterSetting& setting : settings) {
        plugin.SetParameter(setting.index, setting.value);
        table.rows.push_back({std::to_string(setting.index), plugin.Text(effGetParamName, setting.index),
                              ShortNumber(plugin.Parameter(setting.index)),
                              plugin.Text(effGetParamDisplay, setting.index)});
    }
    std::ostringstream out;
    out << table;
    return out.str();
}
