#include "tools/host/plugin_facts.h"

#include <array>
#include <cctype>
#include <charconv>
#include <sstream>

#include "tools/host/text_table.h"

using Json = nlohmann::ordered_json;

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

std::string Joined(const Json& texts) {
    std::string all;
    for (const std::string text : texts) all += (all.empty() ? "" : ", ") + text;
    return all.empty() ? "none" : all;
}

// The capabilities to which the plug-in gives this answer.
Json Answered(const Json& facts, int answer) {
    Json texts = Json::array();
    for (const auto& [capability, given] : facts.at("canDo").items())
        if (given == answer) texts.push_back(capability);
    return texts;
}

}  // namespace

Json AskPlugin(const PluginModule& module) {
    HostedPlugin plugin(module, askingRate, "ORVA", {});
    const AEffect& record = plugin.Record();
    const auto category = static_cast<std::size_t>(plugin.Dispatch(effGetPlugCategory));
    Json facts = {{"name", plugin.Text(effGetEffectName)},
                  {"product", plugin.Text(effGetProductString)},
                  {"vendor", plugin.Text(effGetVendorString)},
                  {"version", record.version},
                  {"vendorVersion", static_cast<std::int32_t>(plugin.Dispatch(effGetVendorVersion))},
                  {"interfaceVersion", static_cast<std::int32_t>(plugin.Dispatch(effGetVstVersion))},
                  {"uniqueId", FourLetters(record.uniqueID)},
                  {"category", category < categories.size() ? categories[category] : "other"},
                  {"inputs", record.numInputs},
                  {"outputs", record.numOutputs},
                  {"programs", Json::array()},
                  {"flags", Json::array()},
                  {"canDo", Json::object()},
                  {"parameters", Json::array()},
                  {"file", module.Path().string()}};
    // One name can be had without switching programs; this host switches none.
    if (record.numPrograms > 0) facts["programs"].push_back(plugin.Text(effGetProgramName));
    for (const FlagName& known : flagNames)
        if ((record.flags & known.flag) != 0) facts["flags"].push_back(known.words);
    for (const char* capability : capabilities) facts["canDo"][capability] = plugin.CanDo(capability);
    for (std::int32_t index = 0; index < record.numParams; ++index)
        facts["parameters"].push_back({{"index", index},
                                       {"name", plugin.Text(effGetParamName, index)},
                                       {"label", plugin.Text(effGetParamLabel, index)},
                                       {"value", ShortDouble(plugin.Parameter(index))},
                                       {"display", plugin.Text(effGetParamDisplay, index)},
                                       {"automatable", plugin.Dispatch(effCanBeAutomated, index) == 1}});
    return facts;
}

std::vector<std::string> ParameterNames(const PluginModule& module) {
    std::vector<std::string> names;
    const Json facts = AskPlugin(module);
    for (const Json& parameter : facts["parameters"]) names.push_back(parameter["name"]);
    return names;
}

std::string FactsTable(const Json& facts) {
    std::ostringstream out;
    const auto line = [&](const char* what, const std::string& text) {
        out << what << std::string(14 - std::string(what).size(), ' ') << text << '\n';
    };
    const auto number = [&](const char* key) { return std::to_string(facts.at(key).get<std::int32_t>()); };
    line("name", facts["name"]);
    line("product", facts["product"]);
    line("vendor", facts["vendor"]);
    line("version", number("version") + ", the vendor's " + number("vendorVersion"));
    line("interface", InterfaceName(facts["interfaceVersion"]));
    line("unique id", facts["uniqueId"]);
    line("category", facts["category"]);
    line("channels", number("inputs") + " in, " + number("outputs") + " out");
    line("program", Joined(facts["programs"]));
    line("flags", Joined(facts["flags"]));
    line("can do", Joined(Answered(facts, 1)));
    line("cannot do", Joined(Answered(facts, -1)));
    line("no answer on", Joined(Answered(facts, 0)));
    line("file", facts["file"]);
    out << '\n' << facts["parameters"].size() << " parameters\n";

    TextTable table;
    table.columns = {{"index", true}, {"name"}, {"label"}, {"value", true}, {"display"}, {"automation"}};
    for (const Json& parameter : facts["parameters"])
        table.rows.push_back({std::to_string(parameter["index"].get<int>()), parameter["name"],
                              parameter["label"], ShortNumber(parameter["value"]), parameter["display"],
                              parameter["automatable"] ? "yes" : "no"});
    out << table;
    return out.str();
}

std::string FactsJson(const Json& facts) {
    return facts.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
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
