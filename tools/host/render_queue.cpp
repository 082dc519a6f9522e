#include "tools/host/render_queue.h"

#include <algorithm>

RenderQueue::RenderQueue(const PluginModule& newModule, const std::vector<std::string>& newFiles,
                         const RenderSettings& newSettings, unsigned jobs, Progress& newProgress)
    : module(newModule),
      files(newFiles),
      settings(newSettings),
      progress(newProgress),
      outcomes(newFiles.size()) {
    const std::size_t wanted = jobs > 0 ? jobs : std::max(1U, std::thread::hardware_concurrency());
    while (workers.size() < std::min(wanted, files.size())) workers.emplace_back([this] { Work(); });
}

RenderQueue::~RenderQueue() {
    nextFile = files.size();
}

void RenderQueue::Work() {
    for (std::size_t file = nextFile++; file < files.size(); file = nextFile++)
        outcomes[file].set_value(Hear(file));
}

Outcome RenderQueue::Hear(std::size_t file) const {
    Outcome outcome;
    try {
        outcome.take =
            Render(module, files[file], settings, [&](double share) { progress.Advance(file, share); });
    } catch (const std::exception& fault) {
        outcome.fault = fault.what();
    }
    progress.Advance(file, 1);
    return outcome;
}
