#pragma once
#include <atomic>
#include <functional>
#include <future>
#include <string>
#include <thread>
#include <vector>

// What became of one file.
struct Outcome {
    std::string text;    // for standard output; may be there although something failed
    std::string advice;  // one line, naming its subject: why little was heard; empty as a rule
    std::string fault;   // one line, naming its subject; empty when all went well
};

// Works on several files, up to `jobs` at a time (0: one for each core), from construction on.
//
// Threads: construction, Wait and destruction on one; the work on threads of its own. Destruction waits for
// the files that have been begun and leaves the others. Whatever the work uses must outlive this. The work
// does not throw.
class RenderQueue {
public:
    using Work = std::function<Outcome(std::size_t file)>;

    RenderQueue(std::size_t files, unsigned jobs, Work newWork);
    ~RenderQueue();
    RenderQueue(const RenderQueue&) = delete;
    RenderQueue& operator=(const RenderQueue&) = delete;

    // Waits until the file with this index has been worked on. Once for each file, in any order.
    Outcome Wait(std::size_t file) { return outcomes[file].get_future().get(); }

private:
    void WorkOn();

    const Work work;
    std::vector<std::promise<Outcome>> outcomes;  // one a file, set by the thread that worked on it
    std::atomic<std::size_t> nextFile{0};
    std::vector<std::jthread> workers;  // last: they end before anything that they use
};
