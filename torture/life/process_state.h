#pragma once
#include <dirent.h>
#include <signal.h>
#include <unistd.h>

#include <array>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <set>
#include <string>
#include <utility>

#include "tests/support/await.h"
#include "torture/row.h"

// What a process shows of itself, and a plug-in that has gone must have left as it was. The text library
// reads its fonts on a thread of its own, which may still begin, or hold a file open, when a window has
// closed.
struct ProcessState {
    std::multiset<std::string> threads;  // by name
    std::size_t files = 0;               // open ones
    std::array<void*, 65> handlers{};    // of signals
    sigset_t mask{};                     // of the calling thread

    static ProcessState Now() {
        ProcessState now;
        ForEntries("/proc/self/task", [&](const std::string& id) {
            std::string name;
            std::getline(std::ifstream("/proc/self/task/" + id + "/comm"), name);
            now.threads.insert(name);
        });
        ForEntries("/proc/self/fd", [&](const std::string&) { ++now.files; });
        for (int number = 1; number < 65; ++number) {
            struct sigaction action = {};
            if (sigaction(number, nullptr, &action) == 0)
                std::memcpy(&now.handlers[static_cast<std::size_t>(number)], &action.sa_handler,
                            sizeof(void*));
        }
        sigemptyset(&now.mask);
        pthread_sigmask(SIG_SETMASK, nullptr, &now.mask);
        return now;
    }
    // Once nothing comes or goes any more.
    static ProcessState AtRest() {
        ProcessState now;
        int same = 0;
        AwaitThat([&] {
            const ProcessState last = std::exchange(now, Now());
            same = now.threads == last.threads && now.files == last.files ? same + 1 : 0;
            return same == 5;
        });
        return now;
    }
    // The process comes to be as it was before.
    static void RequireAgain(const ProcessState& before, const Trial& trial) {
        ProcessState now;
        AwaitThat([&] {
            now = Now();
            return now.threads == before.threads && now.files == before.files;
        });
        std::string names;
        for (const std::string& name : now.threads) names += name + ";";
        trial.Require(now.threads == before.threads, "threads: " + names);
        trial.Require(now.files == before.files, "open files: " + std::to_string(now.files) + ", before " +
                                                     std::to_string(before.files));
        trial.Require(now.handlers == before.handlers, "a signal handler has changed");
        trial.Require(std::memcmp(&now.mask, &before.mask, sizeof mask) == 0, "the signal mask has changed");
    }

private:
    template <typename Visit>
    static void ForEntries(const char* folder, Visit visit) {
        DIR* const entries = opendir(folder);
        if (entries == nullptr) return;
        while (const dirent* const entry = readdir(entries))
            if (entry->d_name[0] != '.') visit(entry->d_name);
        closedir(entries);
    }
};

// Memory in use, bytes; without the pages of files, which come and go as the system likes.
inline double ResidentBytes() {
    long total = 0, resident = 0, ofFiles = 0;
    std::ifstream("/proc/self/statm") >> total >> resident >> ofFiles;
    return static_cast<double>(resident - ofFiles) * static_cast<double>(sysconf(_SC_PAGESIZE));
}
