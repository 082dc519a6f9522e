#include "tools/host/render_queue.h"

#include <algorithm>
#include <utility>

RenderQueue::RenderQueue(std::size_t files, unsigned jobs, Work newWork)
    : work(std::move(newWork)), outcomes(files) {
    const std::size_t cores = std::max(1U, std::thread::hardware_concurrency());
    const std::size_t wanted = jobs > 0 ? std::min<std::size_t>(jobs, cores) : cores;
    while (workers.size() < std::min(wanted, files)) workers.emplace_back([this] { WorkOn(); });
}

RenderQueue::~RenderQueue() {
    nextFile = outcomes.size();
}

void RenderQueue::WorkOn() {
    for (std::size_t file = nextFile++; file < outcomes.size(); file = nextFile++)
        outcomes[file].set_value(work(file));
}
