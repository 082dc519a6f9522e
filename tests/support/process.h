#pragma once
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/support/test.h"

// A program that a line of the shell starts, its words being "$@". It ends with the object, and with the
// thread that started it, however that one ends.
class Process {
public:
    Process() = default;
    explicit Process(const std::string& line, std::vector<std::string> words = {}) {
        Start(line, std::move(words));
    }
    ~Process() { End(SIGKILL); }
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    void Start(const std::string& line, std::vector<std::string> words = {}) {
        words.insert(words.begin(), {"sh", "-c", line, "sh"});
        std::vector<char*> arguments;
        for (std::string& word : words) arguments.push_back(word.data());
        arguments.push_back(nullptr);
        process = fork();
        if (process != 0) return;
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        execv("/bin/sh", arguments.data());
        _exit(127);
    }
    bool HasEnded() {
        if (process > 0 && waitpid(process, nullptr, WNOHANG) == process) process = -1;
        return process <= 0;
    }
    // The exit code; -1 where it did not end by itself.
    int Wait() {
        int status = 0;
        if (process <= 0 || waitpid(std::exchange(process, -1), &status, 0) <= 0) return -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    int End(int signal) {
        Kill(signal);
        return Wait();
    }
    void Kill(int signal) const {
        if (process > 0) kill(process, signal);
    }

private:
    pid_t process = -1;
};

// Runs a program to its end; its exit code.
inline int Run(std::vector<std::string> words) {
    return Process(R"(exec "$@")", std::move(words)).Wait();
}

// What a command of the shell prints, and its exit code behind that if it is not 0.
inline std::string Output(const std::string& command) {
    std::FILE* const pipe = popen((command + " 2>&1").c_str(), "r");
    if (pipe == nullptr) return "not started";
    std::string text;
    std::array<char, 4096> part{};
    while (std::fgets(part.data(), part.size(), pipe) != nullptr) text += part.data();
    const int status = pclose(pipe);
    return status == 0 ? text : text + "ended with " + std::to_string(status);
}
