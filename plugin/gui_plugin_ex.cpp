#include "plugin/gui_plugin_ex.h"

#include "plugin/sample_conversion.h"

void CORVAguivstEx::processSamples(const short* block, std::size_t count) {
    if (!CanDetect() || SumIsZero(block, count)) {
        silentSamples = silentSamples + count;
        stopDetection();
        return;
    }
    silentSamples = 0;
    startDetection();
    detector.Process(block, static_cast<unsigned>(count * sizeof(short)));
}
