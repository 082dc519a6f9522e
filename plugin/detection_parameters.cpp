// Parameters 0 to 2, which steer the recognition, the text that a user types for them, and the program.
#include <cstdio>
#include <cstring>
#include <sstream>
#include <string>

#include "base/text.h"
#include "base/truncate.h"
#include "plugin/parameter_table.h"
#include "plugin/plugin_object.h"

namespace {

constexpr float decibelsPerUnit = -40.0F;  // parameter 1 spans 0 to -40 dB

std::int8_t VelocityOf(float value) {
    return static_cast<std::int8_t>(static_cast<std::uint8_t>(TruncateToInt32(value * 127.0F)));
}

const char* InThirds(float value) {
    return value <= 1.0F / 3.0F ? "low" : value <= 2.0F / 3.0F ? "med" : "high";
}

// What a user typed, read by the locale in force: leading blanks are skipped, trailing matter is ignored.
template <typename Value>
bool ReadTyped(const char* text, Value& value) {
    std::istringstream typed{std::string(text)};
    typed >> value;
    return !typed.fail();
}

}  // namespace

void CORVA_vst::setParameter(std::int32_t index, float value) {
    if (index < paramPolyphony || index > paramVelocity) return;
    baseParameters[index] = value;
    if (index == paramPolyphony)
        detector.SetRelativeThreshold(1.0F - value);
    else if (index == paramSensitivity)
        detector.SetFloorDb(value * decibelsPerUnit);
    else
        noteRecorder.ChangeVelocity(VelocityOf(value));
    updateDisplay();
}

float CORVA_vst::getParameter(std::int32_t index) {
    return index >= paramPolyphony && index <= paramVelocity ? baseParameters[index].load() : 0.0F;
}

void CORVA_vst::getParameterName(std::int32_t index, char* text) {
    CopyText(text, textRoom, ParameterName(index));
}
void CORVA_vst::getParameterLabel(std::int32_t index, char* text) {
    CopyText(text, textRoom, ParameterLabel(index));
}

void CORVA_vst::getParameterDisplay(std::int32_t index, char* text) {
    const float value = getParameter(index);
    switch (index) {
        case paramPolyphony: CopyText(text, textRoom, InThirds(value)); break;
        case paramSensitivity:
            std::snprintf(text, textRoom, "%d dB", TruncateToInt32(value * decibelsPerUnit));
            break;
        case paramVelocity: std::snprintf(text, textRoom, "%d", VelocityOf(value)); break;
        default: std::snprintf(text, textRoom, "%.2f", static_cast<double>(value)); break;
    }
}

// For a value that is not (yet) set. Parameter 1 counts from the other end here, unlike its display.
void CORVA_vst::getParameterValueDisplay(float value, std::int32_t index, char* text) {
    switch (index) {
        case paramPolyphony: CopyText(text, textRoom, InThirds(value)); break;
        case paramSensitivity:
            std::snprintf(text, textRoom, "%d dB", TruncateToInt32((1.0F - value) * decibelsPerUnit));
            break;
        case paramVelocity: std::snprintf(text, textRoom, "%d", VelocityOf(value)); break;
        default: break;
    }
}

bool CORVA_vst::string2parameter(std::int32_t index, const char* text) {
    if (text == nullptr) return false;
    if (index == paramPolyphony) {
        float threshold = 0;  // typed is the detector's relative threshold, not the parameter
        if (!ReadTyped(text, threshold) || !(threshold >= 0.0F && threshold <= 1.0F)) return false;
        setParameter(index, 1.0F - threshold);
        return true;
    }
    if (index == paramSensitivity) {
        float decibels = 0;
        if (!ReadTyped(text, decibels) || !(decibels >= -40.0F && decibels <= 0.0F)) return false;
        setParameter(index, decibels * -0.025F);
        return true;
    }
    if (index == paramVelocity) {
        int typed = 0;
        if (!ReadTyped(text, typed)) return false;
        const auto velocity = static_cast<std::int8_t>(static_cast<std::uint8_t>(typed));
        if (velocity <= 0) return false;
        setParameter(index,
                     static_cast<float>(velocity) / 127.0F + 0.007F);  // so that truncation gives it back
        return true;
    }
    return false;
}

void CORVA_vst::setProgramName(const char* name) {
    if (name == nullptr) return;
    // A host's text may be longer than the field, or without an end: no byte past the field's size is read.
    const std::lock_guard<std::mutex> held(programNameGuard);
    CopyText(programName, sizeof programName, {name, strnlen(name, sizeof programName)});
}

void CORVA_vst::getProgramName(char* name) {
    const std::lock_guard<std::mutex> held(programNameGuard);
    CopyText(name, kVstMaxProgNameLen, programName);
}
