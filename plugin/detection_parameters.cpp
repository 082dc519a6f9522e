// Parameters 0 to 2, which steer the recognition, the text that a user types for them, and the program.
#include <cstring>

#include "base/text.h"
#include "parameters/parameters.h"
#include "plugin/plugin_object.h"

void CORVA_vst::setParameter(std::int32_t index, float value) {
    if (index < paramPolyphony || index > paramVelocity) return;
    baseParameters[index] = value;
    if (index == paramPolyphony)
        detector.SetRelativeThreshold(1.0F - value);
    else if (index == paramSensitivity)
        detector.SetFloorDb(DecibelsOf(value));
    else
        noteRecorder.ChangeVelocity(VelocityOf(value));
    updateDisplay();
}

float CORVA_vst::getParameter(std::int32_t index) {
    return index >= paramPolyphony && index <= paramVelocity ? baseParameters[index].load() : 0.0F;
}

void CORVA_vst::getParameterName(std::int32_t index, char* text) {
    CopyText(text, textSize, ParameterName(index));
}
void CORVA_vst::getParameterLabel(std::int32_t index, char* text) {
    CopyText(text, textSize, ParameterLabel(index));
}

void CORVA_vst::getParameterDisplay(std::int32_t index, char* text) {
    CopyText(text, textSize, ParameterDisplay(index, getParameter(index)));
}

// For a value that is not (yet) set. Parameter 1 counts from the other end here, unlike its display.
void CORVA_vst::getParameterValueDisplay(float value, std::int32_t index, char* text) {
    if (index < paramPolyphony || index > paramVelocity) return;
    CopyText(text, textSize, ParameterDisplay(index, index == paramSensitivity ? 1.0F - value : value));
}

bool CORVA_vst::string2parameter(std::int32_t index, const char* text) {
    float value = 0;
    if (!ReadParameter(index, text, value)) return false;
    setParameter(index, value);
    return true;
}

void CORVA_vst::setProgramName(const char* name) {
    if (name == nullptr) return;
    // A host's text may be longer than the field, or without an end: no byte past the field's size is read.
    const Locked held(programNameGuard);
    CopyText(programName, sizeof programName, {name, strnlen(name, sizeof programName)});
}

void CORVA_vst::getProgramName(char* name) {
    const Locked held(programNameGuard);
    CopyText(name, kVstMaxProgNameLen, programName);
}
