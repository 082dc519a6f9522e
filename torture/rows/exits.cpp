// LIF-5: every way in which a host may leave. LIF-8: what a life costs from a cold start.
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <thread>

#include "torture/life/host_window.h"
#include "torture/row.h"

namespace {

constexpr int farewell = 17;
#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
constexpr double longestExit = 10;  // s; the sanitizers' own start and end come on top
#else
constexpr double longestExit = 2;
#endif

double Seconds(std::chrono::steady_clock::time_point since) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - since).count();
}

void RequireFarewell(const Trial& trial, pid_t child, std::chrono::steady_clock::time_point begin,
                     const std::string& how) {
    int status = 0;
    while (waitpid(child, &status, WNOHANG) == 0) {
        if (Seconds(begin) > longestExit) {
            kill(child, SIGKILL);
            waitpid(child, &status, 0);
            trial.Fail(how + ": no end after " + std::to_string(longestExit) + " s");
        }
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
    Trial::Figure("longest, s", Seconds(begin));
    if (WIFSIGNALED(status)) trial.Fail(how + ": signal " + std::to_string(WTERMSIG(status)));
    trial.Require(WEXITSTATUS(status) == farewell,
                  how + ": ended with " + std::to_string(WEXITSTATUS(status)));
}

// `words[0]` is the program. `told`, where not -1, becomes its file 3.
pid_t StartGuest(const Trial& trial, std::vector<std::string> words, int told = -1) {
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    if (told != -1) posix_spawn_file_actions_adddup2(&files, told, 3);
    pid_t child = 0;
    const int fault = posix_spawn(&child, arguments[0], &files, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&files);
    trial.Require(fault == 0, "the guest does not start");
    return child;
}

// What a guest writes to its file 3 until it ends in the way that it should.
std::string Told(const Trial& trial, const std::vector<std::string>& words, const std::string& how) {
    int ends[2];
    trial.Require(pipe2(ends, O_CLOEXEC) == 0, "no pipe");
    const auto begin = std::chrono::steady_clock::now();
    const pid_t child = StartGuest(trial, words, ends[1]);
    close(ends[1]);
    RequireFarewell(trial, child, begin, how);
    char text[64];
    const ssize_t length = read(ends[0], text, sizeof text);
    close(ends[0]);
    return {text, static_cast<std::size_t>(std::max<ssize_t>(length, 0))};
}

// --- the rows ---

void TryExit(Trial& trial) {
    static constexpr const char* ways[] = {"exit",    "quick_exit", "_exit", "return",
                                           "dlclose", "other",      "late"};
    static constexpr const char* states[] = {"alive", "audio", "editor", "device", "device and audio"};
    const std::string way = ways[trial.number % std::size(ways)];
    std::string state = states[trial.number / std::size(ways) % std::size(states)];
    const bool unloads = trial.number % std::size(ways) >= 4;
    if (unloads && state.starts_with("device")) state = "alive";
    if ((way == "other" || way == "late") && state == "audio")
        state = "alive";  // nobody plays what is closed
    const std::string how = way + ", " + state;
    if (state.starts_with("device")) {
        const std::string told =
            Told(trial, {ORVA_DEVICE_GUEST_FILE, way, state == "device" ? "alive" : "audio"}, how);
        const bool destructorsRun = way == "exit" || way == "return";
        trial.Require(told == (destructorsRun ? "osc" : "os"), how + ": the device was told \"" + told + '"');
        return;
    }
    std::vector<std::string> words = {ORVA_GUEST_FILE, ORVA_MODULE_FILE, way, state};
    if (state == "editor") {
        static const HostWindow& window = *new HostWindow;
        words.push_back(std::to_string(reinterpret_cast<std::uintptr_t>(window.Handle())));
        // A host that leaves the window open has given nothing back, and what the toolkit holds is no leak.
        setenv("ASAN_OPTIONS", "detect_leaks=0", 1);
    }
    const auto begin = std::chrono::steady_clock::now();
    RequireFarewell(trial, StartGuest(trial, words), begin, how);
}

constexpr double longestMedian = 20, longestStart = 100;  // ms

// Of one start, ms. What the processors did is judged: how long that took depends on who else wants them.
struct Times {
    double elapsed = 0, worked = 0;
};

Times OneStart(const Trial& trial, bool cold) {
    if (cold) {
        const int file = open(ORVA_MODULE_FILE, O_RDONLY | O_CLOEXEC);
        posix_fadvise(file, 0, 0, POSIX_FADV_DONTNEED);
        close(file);
    }
    const std::string told = Told(trial, {ORVA_GUEST_FILE, ORVA_MODULE_FILE, "start"}, "start");
    Times times;
    trial.Require(told.size() == sizeof times, "a start ended its process");
    std::memcpy(&times, told.data(), sizeof times);
    return times;
}

void TryStarts(Trial& trial) {
    std::vector<double> elapsed, worked;
    for (int i = 0; i < 20; ++i) {
        const Times times = OneStart(trial, trial.number % 2 == 0);
        elapsed.push_back(times.elapsed);
        worked.push_back(times.worked);
    }
    std::sort(elapsed.begin(), elapsed.end());
    std::sort(worked.begin(), worked.end());
    const double median = worked[worked.size() / 2], worst = worked.back();
    Trial::Figure("median work, ms", median);
    Trial::Figure("worst work, ms", worst);
    Trial::Figure("median time, ms", elapsed[elapsed.size() / 2]);
    trial.Require(median <= longestMedian, "median " + std::to_string(median) + " ms");
    trial.Require(worst <= longestStart, "worst " + std::to_string(worst) + " ms");
}

const Registered exits({"LIF-5", "a host may leave in any way, with anything open", inAll, 1000, 25, 120,
                        TryExit});
const Registered starts({"LIF-8", "a load, a life and an unload take 20 ms, and 100 ms at worst", inRelease,
                         10, 10, 60, TryStarts});

}  // namespace
