#pragma once
#include "plugin/gui_plugin.h"

// The plug-in object as the host meets it. This level alone reaches the detector: the registration role sits
// here, on the road of each block, and lets every block through.
class CORVAguivstEx : public CORVAguivst {
public:
    using CORVAguivst::CORVAguivst;

    void processSamples(const short* block, std::size_t count) override;  // [audio]
};
