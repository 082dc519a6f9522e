#include "tools/host/commands/ear_options.h"

#include <utility>

#include "parameters/starting_points.h"
#include "tools/host/read_number.h"

namespace {

constexpr std::pair<const char*, Ear> ears[] = {
    {"classic", Ear::classic}, {"live", Ear::refinedLive}, {"file", Ear::refinedFile}};
constexpr float furthest = 60;  // dB, as far as the plug-in goes

}  // namespace

void AddEarOptions(CLI::App& command, EarTexts& texts, const std::string& usual) {
    command
        .add_option("--ear", texts.ear,
                    "classic, the plug-in's own; live, refined with 50 ms of look-ahead; file, with 80 ms")
        ->type_name("EAR")
        ->check(CLI::IsMember({"classic", "live", "file"}).description(""))
        ->default_str(usual);
    command
        .add_option("--threshold", texts.threshold, "of the refined ears: fewer notes above 0, more below")
        ->type_name("N")
        ->check(CLI::Range(-10.0, 10.0).description(""))
        ->default_str("0");
    command
        .add_option("--level", texts.level,
                    "hear the audio louder by so many dB, or auto: brought to full level")
        ->type_name("DB")
        ->capture_default_str();
}

EarSettings ParseEar(const EarTexts& texts, const std::string& usual, const std::string& instrument) {
    EarSettings settings;
    settings.isRequired = !texts.ear.empty() && texts.ear != "classic";
    const std::string& wanted = texts.ear.empty() ? usual : texts.ear;
    for (const auto& [name, ear] : ears)
        if (wanted == name) settings.ear = ear;
    settings.threshold = texts.threshold.value_or(RefinedThresholdFor(instrument));
    settings.autoLevel = texts.level == "auto";
    if (settings.autoLevel) return settings;
    if (!ReadNumber(texts.level, settings.level) ||
        !(settings.level >= -furthest && settings.level <= furthest))
        throw UsageError("--level: \"" + texts.level + "\" is neither auto nor dB from -60 to 60");
    return settings;
}
