#pragma once
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "tests/support/await.h"
#include "tests/support/temp_folder.h"

using Arguments = std::vector<std::string>;

// orva-host as a shell starts it, without a display; `input` is its standard input. It ends with the object.
class HostProcess {
public:
    explicit HostProcess(Arguments arguments, const std::string& input = {}) {
        WriteAll(folder / "in", input);
        const std::string redirected = "cd " + folder.path.string() +
                                       "; exec 3< in > out 2> err; cd \"$0\"; " +
                                       "exec " ORVA_HOST_PROGRAM " \"$@\" <&3 3<&-";
        arguments.insert(arguments.begin(),
                         {"sh", "-c", redirected, std::filesystem::current_path().string()});
        std::vector<char*> words;
        for (std::string& argument : arguments) words.push_back(argument.data());
        words.push_back(nullptr);
        unsetenv("DISPLAY");
        if (posix_spawn(&process, "/bin/sh", nullptr, nullptr, words.data(), environ) != 0) process = -1;
    }
    ~HostProcess() { End(SIGKILL); }

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

private:
    TempFolder folder;
    pid_t process = -1;
};

struct Ended {
    int code = -1;
    std::string out, err;
};
inline Ended RunHost(const Arguments& arguments, const std::string& input = {}) {
    HostProcess host(arguments, input);
    const int code = host.Wait();
    return {code, host.Out(), host.Err()};
}

inline bool Contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}
