#pragma once
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/support/await.h"
#include "tests/support/temp_folder.h"

// orva-host as a shell starts it, without a display; `input` is what it finds on standard input. It ends with
// the object.
class HostProcess {
public:
    explicit HostProcess(std::vector<std::string> arguments, const std::string& input = {}) {
        WriteAll(folder / "in", input);
        arguments.insert(arguments.begin(), ORVA_HOST_PROGRAM);
        std::vector<char*> words;
        for (std::string& argument : arguments) words.push_back(argument.data());
        words.push_back(nullptr);

        unsetenv("DISPLAY");
        posix_spawn_file_actions_t files;
        posix_spawn_file_actions_init(&files);
        constexpr int written = O_WRONLY | O_CREAT;
        posix_spawn_file_actions_addopen(&files, STDIN_FILENO, (folder / "in").c_str(), O_RDONLY, 0);
        posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, (folder / "out").c_str(), written, 0600);
        posix_spawn_file_actions_addopen(&files, STDERR_FILENO, (folder / "err").c_str(), written, 0600);
        if (posix_spawn(&process, words[0], &files, nullptr, words.data(), environ) != 0) process = -1;
        posix_spawn_file_actions_destroy(&files);
    }
    ~HostProcess() { End(SIGKILL); }
    HostProcess(const HostProcess&) = delete;
    HostProcess& operator=(const HostProcess&) = delete;

    // The exit code; -1 where it did not end by itself.
    int Wait() {
        int status = 0;
        if (process <= 0 || waitpid(process, &status, 0) != process) return -1;
        process = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    int End(int signal) {
        if (process > 0) kill(process, signal);
        return Wait();
    }
    std::string Out() const { return ReadAll(folder / "out"); }
    std::string Err() const { return ReadAll(folder / "err"); }
    bool AwaitOut(const std::string& text) const {
        return AwaitThat([&] { return Out().find(text) != std::string::npos; });
    }
    bool AwaitErr(const std::string& text) const {
        return AwaitThat([&] { return Err().find(text) != std::string::npos; });
    }

private:
    TempFolder folder;
    pid_t process = -1;
};

struct Ended {
    int code = -1;
    std::string out;
    std::string err;
};

// Runs it to its end.
inline Ended RunHost(const std::vector<std::string>& arguments, const std::string& input = {}) {
    HostProcess host(arguments, input);
    const int code = host.Wait();
    return {code, host.Out(), host.Err()};
}

// How many there are.
inline std::ptrdiff_t Lines(const std::string& text) {
    return std::count(text.begin(), text.end(), '\n');
}
