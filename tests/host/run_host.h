#pragma once
#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

#include "temp_folder.h"

struct Ended {
    int code = -1;
    std::string out;
    std::string err;
};

// Runs orva-host to its end; `input` is what it finds on standard input.
inline Ended RunHost(std::vector<std::string> arguments, const std::string& input = {}) {
    const TempFolder folder;
    const std::string in = folder / "in", out = folder / "out", err = folder / "err";
    WriteAll(in, input);
    arguments.insert(arguments.begin(), ORVA_HOST_PROGRAM);
    std::vector<char*> words;
    for (std::string& argument : arguments) words.push_back(argument.data());
    words.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, in.c_str(), O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, out.c_str(), O_WRONLY | O_CREAT, 0600);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, err.c_str(), O_WRONLY | O_CREAT, 0600);
    pid_t child = 0;
    const int refused = posix_spawn(&child, words[0], &actions, nullptr, words.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    EXPECT_EQ(refused, 0);
    Ended ended;
    int status = 0;
    if (refused == 0 && waitpid(child, &status, 0) == child && WIFEXITED(status))
        ended.code = WEXITSTATUS(status);
    ended.out = ReadAll(out);
    ended.err = ReadAll(err);
    return ended;
}

// How many there are.
inline std::ptrdiff_t Lines(const std::string& text) {
    return std::count(text.begin(), text.end(), '\n');
}
