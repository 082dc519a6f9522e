#pragma once
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <clocale>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>

#include "tests/support/await.h"

// What a process shows of itself, and a plug-in that has gone must have left as it was. Pango reads its fonts
// on a thread of its own, which may still begin, or have a file open, when a window has closed.
struct ProcessState {
    std::multiset<std::string> threads;         // by name
    std::ptrdiff_t files = 0;                   // open ones
    std::array<bool, 65> handled{}, blocked{};  // signals
    std::string locale = setlocale(LC_ALL, nullptr), folder = std::filesystem::current_path();
    std::multiset<std::string> environment;

    ProcessState() {
        for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
            std::string name;
            std::getline(std::ifstream(task.path() / "comm"), name);
            threads.insert(name);
        }
        const std::filesystem::directory_iterator listing("/proc/self/fd");
        files = std::distance(begin(listing), end(listing));
        sigset_t mask;
        pthread_sigmask(SIG_SETMASK, nullptr, &mask);
        for (int number = 1; number < 65; ++number) {
            struct sigaction action = {};
            sigaction(number, nullptr, &action);
            handled[static_cast<std::size_t>(number)] = action.sa_handler != SIG_DFL;
            blocked[static_cast<std::size_t>(number)] = sigismember(&mask, number) == 1;
        }
        for (char** entry = environ; *entry != nullptr; ++entry) environment.emplace(*entry);
    }
    bool operator==(const ProcessState&) const = default;

    // Once nothing comes or goes any more.
    static ProcessState AtRest() {
        ProcessState last;
        int same = 0;
        AwaitThat([&] {
            const ProcessState now;
            same = now == last ? same + 1 : 0;
            last = now;
            return same == 5;
        });
        return last;
    }
    // Whether the process comes to be as it was.
    bool Returns() const {
        return AwaitThat([this] { return ProcessState() == *this; }, std::chrono::seconds(10));
    }
};
