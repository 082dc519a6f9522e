#pragma once
#include <cstddef>
#include <functional>
#include <vector>

#include "base/mutex.h"

// A bar on standard error that shows how far a run over several files has come. Silent where standard error
// is no terminal.
//
// Threads: [any]; the lock guards the terminal's line, too.
class Progress {
public:
    explicit Progress(std::size_t files);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void Advance(std::size_t file, double share);  // share of that file, 0 to 1
    // Clears the line and lets other text be printed while nobody draws; the next Advance brings the bar
    // back.
    void Aside(const std::function<void()>& print);

private:
    void Hide() REQUIRES(lock);

    Mutex lock;
    std::vector<double> shares GUARDED_BY(lock);  // one a file
    double sum GUARDED_BY(lock) = 0;              // of shares
    const int width;                              // characters of the bar; 0: none is drawn
    int percentDrawn GUARDED_BY(lock) = -1;       // what stands on the terminal; -1 for nothing
};
