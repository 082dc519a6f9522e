#pragma once
#include <mutex>
#include <sstream>
#include <string>

// A text log held in memory, so that a user can save facts about the host for support. One per process; all
// instances append to it, and nothing ever clears it.
//
// Threads: [any], never [audio]. A writer composes its block of lines and appends it whole, so that blocks of
// two instances never mix.
class MemLog {
public:
    void append(const std::string& block);
    std::string text() const;                        // the whole text so far
    bool saveToFile(const std::string& path) const;  // replaces what is there; true when it could be opened

private:
    mutable std::mutex guard;  // of `log`
    std::ostringstream log;
};

MemLog& getMemLog();  // the process-wide instance, made at the first request
