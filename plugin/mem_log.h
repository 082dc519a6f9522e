#pragma once
#include <cstddef>
#include <string>
#include <vector>

#include "base/mutex.h"

// A text log held in memory, so that a user can save facts about the host for support. One per process; all
// instances append to it, and nothing ever clears it.
//
// Threads: [any], never [audio]. A writer composes its block of lines and appends it whole, so that blocks of
// two instances never mix.
// Memory: a block that says what an earlier one says takes a few bytes, or none if that is the last one: a
// host may open instances for days.
class MemLog {
public:
    void append(const std::string& block);
    std::string text() const;                        // the whole text so far
    bool saveToFile(const std::string& path) const;  // replaces what is there; true when it could be opened

private:
    struct Run {
        std::size_t block;  // index into `blocks`
        std::size_t times;  // in a row
    };
    mutable Mutex guard;
    std::vector<std::string> blocks GUARDED_BY(guard);  // each different one
    std::vector<Run> runs GUARDED_BY(guard);            // the log, oldest first
};

MemLog& getMemLog();  // the process-wide instance, made at the first request
