#pragma once
#include <filesystem>
#include <memory>

#include "vst2/records.h"

// A plug-in's file, loaded as any host loads it: by its exported entry and nothing else.
//
// Errors: std::runtime_error with file and reason. Threads: [any], once constructed. Outlives its instances.
class PluginModule {
public:
    explicit PluginModule(const std::filesystem::path& newPath);

    // Makes an instance; null when the plug-in refuses. The callback may be called before this returns.
    AEffect* Open(audioMasterCallback host) const { return entry(host); }
    const std::filesystem::path& Path() const { return path; }

private:
    struct Unload {
        void operator()(void* loaded) const;
    };
    using Entry = AEffect* (*)(audioMasterCallback host);

    std::filesystem::path path;  // absolute
    std::unique_ptr<void, Unload> library;
    Entry entry = nullptr;
};

// The file to load: `named` unless that is empty, else orva_vst.so beside the program, in a folder of
// VST_PATH, in
// ~/.vst, /usr/local/lib/vst or /usr/lib/vst, whichever has it first. Errors: std::runtime_error when none
// has.
std::filesystem::path FindPlugin(const std::filesystem::path& named);
