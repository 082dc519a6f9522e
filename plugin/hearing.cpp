#include "plugin/hearing.h"

#include <charconv>
#include <string>

#include "desktop/user_store.h"

namespace {

constexpr char earKey[] = "Ear", thresholdKey[] = "Refined Threshold", levelKey[] = "Input Level";
constexpr char refinedText[] = "Refined", classicText[] = "Classic";
constexpr float furthestThreshold = 10, furthestLevel = 60;  // logits, dB

float ReadNumber(const char* key, float furthest) {
    const std::string text = readRegistryString(key);
    float value = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, fault] = std::from_chars(text.data(), end, value);
    return fault == std::errc() && stop == end && value >= -furthest && value <= furthest ? value : 0.0F;
}

bool WriteNumber(const char* key, float value) {
    char text[32];
    const auto [stop, fault] = std::to_chars(text, text + sizeof text, value);
    return fault == std::errc() && writeRegistryString(key, {text, static_cast<std::size_t>(stop - text)});
}

}  // namespace

Hearing ReadPreferredHearing() {
    return {readRegistryString(earKey) == refinedText ? Ear::refinedLive : Ear::classic,
            ReadNumber(thresholdKey, furthestThreshold), ReadNumber(levelKey, furthestLevel)};
}

bool StorePreferredHearing(const Hearing& before, const Hearing& now) {
    bool stored = true;
    if (now.ear != before.ear)
        stored = writeRegistryString(earKey, now.ear == Ear::classic ? classicText : refinedText);
    if (now.threshold != before.threshold) stored = WriteNumber(thresholdKey, now.threshold) && stored;
    if (now.level != before.level) stored = WriteNumber(levelKey, now.level) && stored;
    return stored;
}
