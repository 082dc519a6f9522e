#include "plugin/gui_plugin.h"

#include <cstdio>

CORVAguivst::CORVAguivst(audioMasterCallback host) : CORVA_vst(host, parameterCount) {
    for (std::int32_t index = paramFirstBar; index < parameterCount; ++index)
        furtherParameters[index] = ParameterInitialValue(index);
    detector.equalizerEnabled = true;  // for good; the gains stay 1 until a bar is first changed
    noteRecorder.SetSendProgramChange(false);
}

void CORVAguivst::setParameter(std::int32_t index, float value) {
    if (index < paramFirstBar) return CORVA_vst::setParameter(index, value);
    if (index < parameterCount) furtherParameters[index] = value;
}

float CORVAguivst::getParameter(std::int32_t index) {
    if (index < paramFirstBar || index >= parameterCount) return CORVA_vst::getParameter(index);
    return furtherParameters[index];
}

void CORVAguivst::getParameterDisplay(std::int32_t index, char* text) {
    if (index < paramFirstBar) return CORVA_vst::getParameterDisplay(index, text);
    getParameterValueDisplay(getParameter(index), index, text);
}

void CORVAguivst::getParameterValueDisplay(float value, std::int32_t index, char* text) {
    if (index < paramFirstBar) return CORVA_vst::getParameterValueDisplay(value, index, text);
    std::snprintf(text, textRoom, "%.2f", static_cast<double>(value));
}
