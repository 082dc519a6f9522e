#pragma once
#include <atomic>
#include <future>
#include <string>
#include <thread>
#include <vector>

#include "tools/host/progress.h"
#include "tools/host/renderer.h"

// What became of one file: a take, or the reason why there is none.
struct Outcome {
    Take take;
    std::string fault;  // empty when all went well
};

// Hears several files, up to `jobs` at a time (0: one for each core), from construction on.
//
// Threads: construction, Wait and destruction on one; the files on threads of its own. Destruction waits for
// the files that have been begun and leaves the others. Whatever is handed in by reference must outlive this.
class RenderQueue {
public:
    RenderQueue(const PluginModule& newModule, const std::vector<std::string>& newFiles,
                const RenderSettings& newSettings, unsigned jobs, Progress& newProgress);
    ~RenderQueue();
    RenderQueue(const RenderQueue&) = delete;
    RenderQueue& operator=(const RenderQueue&) = delete;

    // Waits until the file with this index has been heard. Once for each file, in any order.
    Outcome Wait(std::size_t file) { return outcomes[file].get_future().get(); }

private:
    void Work();
    Outcome Hear(std::size_t file) const;

    const PluginModule& module;
    const std::vector<std::string>& files;
    const RenderSettings& settings;
    Progress& progress;
    std::vector<std::promise<Outcome>> outcomes;  // one a file, set by the thread that heard it
    std::atomic<std::size_t> nextFile{0};
    std::vector<std::jthread> workers;  // last: they end before anything that they use
};
