// A user's settings and the log, while others write too.
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <sstream>
#include <thread>
#include <vector>

#include "platform/user_store.h"
#include "plugin/mem_log.h"
#include "tests/support/temp_folder.h"
#include "torture/row.h"

namespace {

constexpr int writesEach = 100;  // by each process in a case; the row writes 10,000 times
constexpr int logThreads = 8;

bool IsOneLetter(const std::string& text) {
    return text.size() == 255 && text.find_first_not_of(text[0]) == std::string::npos;
}

// Two processes write the same setting; whoever reads gets one of the texts, whole.
void TryTwoWriters(Trial& trial) {
    trial.Require(writeRegistryString("Name", std::string(255, '-')), "cannot be stored");
    const pid_t other = fork();
    trial.Require(other != -1, "no second process");
    if (other == 0) {
        bool stored = true;
        for (int i = 0; i < writesEach; ++i)
            stored = writeRegistryString("Name", std::string(255, static_cast<char>('A' + i % 26))) && stored;
        _exit(stored ? 0 : 1);
    }
    for (int i = 0; i < writesEach; ++i) {
        trial.Require(writeRegistryString("Name", std::string(255, static_cast<char>('a' + i % 26))),
                      "not stored");
        for (int reads = 0; reads < 5; ++reads)
            trial.Require(IsOneLetter(readRegistryString("Name")), "read what nobody wrote");
    }
    int status = -1;
    trial.Require(waitpid(other, &status, 0) == other && status == 0, "the second process could not store");
    trial.Require(IsOneLetter(readRegistryString("Name")), "left what nobody wrote");
}

// Long texts, of which a reader sees nothing, and a later short one everything.
void TryLongText(Trial& trial, const TempFolder& folder) {
    const std::size_t length = trial.OneIn(2) ? std::size_t{1} << 20 : trial.Below(600);
    const std::string text(length, 'x');
    trial.Require(writeRegistryString("Code", text), "cannot be stored");
    trial.Require(readRegistryString("Code") == (length <= 255 ? text : ""),
                  "read more than there is room for");
    for (const auto& file : std::filesystem::recursive_directory_iterator(folder.path)) {
        struct stat found {};
        trial.Require(stat(file.path().c_str(), &found) == 0, "gone");
        trial.Require((found.st_mode & 0777U) == (file.is_directory() ? 0700U : 0600U),
                      "others may read " + file.path().string());
        trial.Require(file.is_directory() || file.path().filename().string()[0] != '.', "a draft is left");
    }
}

void TryNowhere(Trial& trial) {
    const std::string homes[] = {"/proc/self", "/dev/null", "relative", "", std::string(5000, 'h')};
    for (const std::string& home : homes) {
        setenv("XDG_CONFIG_HOME", home.c_str(), 1);
        setenv("HOME", home.c_str(), 1);
        trial.Require(!writeRegistryString("Name", "Ada"), "stored in <" + home.substr(0, 20) + ">");
        trial.Require(readRegistryString("Name").empty(), "read from <" + home.substr(0, 20) + ">");
    }
    unsetenv("XDG_CONFIG_HOME");
    unsetenv("HOME");
    trial.Require(!writeRegistryString("Name", "Ada"), "stored without a home");
    trial.Require(readRegistryString("Name").empty(), "read without a home");
}

// Blocks of lines that threads append at once stay whole, each in its place.
void TryLog(Trial& trial) {
    MemLog log;
    std::vector<std::thread> writers;
    std::atomic<int> waiting{logThreads};
    for (int writer = 0; writer < logThreads; ++writer)
        writers.emplace_back([&, writer] {
            for (--waiting; waiting > 0;) std::this_thread::yield();
            for (int count = 0; count < writesEach; ++count) {
                const std::string word = std::to_string(writer) + " " + std::to_string(count) + "\n";
                log.append(word + word + word);
                if (count % 10 == 0) log.text();
            }
        });
    for (std::thread& writer : writers) writer.join();
    std::vector<int> next(logThreads);
    std::istringstream lines(log.text());
    int blocks = 0;
    for (int writer = 0, count = 0; lines >> writer >> count; ++blocks) {
        trial.Require(count == next.at(static_cast<std::size_t>(writer))++, "a block is missing or moved");
        for (int repeat = 0; repeat < 2; ++repeat) {
            int sameWriter = -1, sameCount = -1;
            lines >> sameWriter >> sameCount;
            trial.Require(sameWriter == writer && sameCount == count, "a block was torn");
        }
    }
    trial.Require(blocks == logThreads * writesEach, "blocks are missing");
}

void TryStore(Trial& trial) {
    const TempFolder folder;
    setenv("XDG_CONFIG_HOME", folder.path.c_str(), 1);
    TryTwoWriters(trial);
    TryLongText(trial, folder);
    TryLog(trial);
    TryNowhere(trial);
}

const Registered store({"FIL-10", "keeps settings and log whole, whoever writes at once", inAll, 100, 10, 60,
                        TryStore});

}  // namespace
