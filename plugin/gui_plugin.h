#pragma once
#include <cstdint>

#include "plugin/parameter_table.h"
#include "plugin/plugin_object.h"

// The plug-in object with all its 96 parameters.
//
// Threads: as CORVA_vst. Parameter values are words of their own; none waits for another.
class CORVAguivst : public CORVA_vst {
public:
    explicit CORVAguivst(audioMasterCallback host);

    void setParameter(std::int32_t index, float value) override;
    float getParameter(std::int32_t index) override;
    void getParameterDisplay(std::int32_t index, char* text) override;
    void getParameterValueDisplay(float value, std::int32_t index, char* text) override;
    bool canParameterBeAutomated(std::int32_t index) override { return index < paramInstrument; }

private:
    Relaxed<float> furtherParameters[parameterCount];  // raw values of parameters 3 to 95
};
