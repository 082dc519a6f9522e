#include "plugin/gui_plugin_ex.h"

#include "plugin/mem_log.h"
#include "plugin/sample_conversion.h"

void CORVAguivstEx::processSamples(const short* block, std::size_t count) {
    const bool silent = !CanDetect() || SumIsZero(block, count);
    silentSamples = silent ? silentSamples + count : 0;
    if (silent && !(CanDetect() && HearsThroughSilence())) return stopDetection();
    startDetection();
    detector.Process(block, static_cast<unsigned>(count * sizeof(short)));
}

bool CORVAguivstEx::submitRegistration(const char* name, const char* code) {
    return Registration::Submit(name, code);
}

void CORVAguivstEx::logHostInfo() {
    if (registration.Registered()) getMemLog().append("Registered to: " + registration.Name() + "\n");
    CORVAguivst::logHostInfo();
}
