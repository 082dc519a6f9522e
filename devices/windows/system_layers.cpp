#include "devices/windows/winmm_out.h"

#include <windows.h>

#include <winternl.h>

extern "C" BOOLEAN NTAPI RtlDllShutdownInProgress();

std::vector<std::unique_ptr<MidiBackend>> SystemLayers() {
    std::vector<std::unique_ptr<MidiBackend>> layers;
    layers.push_back(std::make_unique<WinmmBackend>());
    return layers;
}

SystemVersion OperatingSystemVersion() {
    OSVERSIONINFOA version = {};
    version.dwOSVersionInfoSize = sizeof version;
    if (!::GetVersionExA(&version)) return {10, 0};
    return {version.dwMajorVersion, version.dwMinorVersion};
}

// At the end of the process the system has ended all other threads, wherever they were: ours perhaps within a
// send, and those of a driver that would be waited for. It closes what they had open.
bool DevicesAreOurs() {
    return RtlDllShutdownInProgress() == FALSE;
}
