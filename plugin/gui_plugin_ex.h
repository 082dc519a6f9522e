#pragma once
#include "plugin/gui_plugin.h"
#include "plugin/registration.h"

// The plug-in object as the host sees it. This level alone reaches the detector: the registration role sits
// here, on the path of each block, and lets every block through.
class CORVAguivstEx : public CORVAguivst {
public:
    using CORVAguivst::CORVAguivst;

    void processSamples(const short* block, std::size_t count) override;  // [audio]
    bool registrationStatus() override { return registration.Registered(); }
    bool submitRegistration(const char* name, const char* code) override;
    void logHostInfo() override;  // who it is registered to, then what the host says of itself

private:
    Registration registration;
};
