#pragma once
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

extern char** environ;

// A display without a screen, of our own: the programs of these tests see no other. Ended with the object.
class DisplayServer {
public:
    // At the next free number, which becomes the DISPLAY of this process.
    DisplayServer() {
        int number[2];
        if (pipe2(number, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
        server = fork();
        if (server == 0) {
            dup2(number[1], 3);
            // It ends with whoever started it, however that one ends.
            execlp("setpriv", "setpriv", "--pdeathsig", "KILL", "sh", "-c",
                   "exec Xvfb -displayfd 3 -screen 0 1024x768x24 -screen 1 64x64x24 -nolisten tcp -noreset "
                   "2> /dev/null",
                   nullptr);
            _exit(1);
        }
        close(number[1]);
        std::string text;
        for (char digit = 0; read(number[0], &digit, 1) == 1 && digit != '\n';) text += digit;
        close(number[0]);
        if (text.empty()) throw std::runtime_error("Xvfb did not start");
        setenv("DISPLAY", (":" + text).c_str(), 1);
    }
    ~DisplayServer() { End(); }
    DisplayServer(const DisplayServer&) = delete;
    DisplayServer& operator=(const DisplayServer&) = delete;

    void End() {
        if (server <= 0) return;
        kill(server, SIGKILL);
        waitpid(server, nullptr, 0);
        server = 0;
    }

private:
    pid_t server = 0;
};

// Runs a program to its end; its exit code.
inline int Run(std::vector<std::string> words) {
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    pid_t child = 0;
    if (posix_spawnp(&child, arguments[0], nullptr, nullptr, arguments.data(), environ) != 0) return -1;
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
