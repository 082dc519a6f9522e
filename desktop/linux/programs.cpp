#include "desktop/linux/programs.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string_view>

#include "base/lasting.h"
#include "base/mutex.h"

namespace {

bool IsExecutable(const std::string& path) {
    struct stat found = {};
    return stat(path.c_str(), &found) == 0 && S_ISREG(found.st_mode) && access(path.c_str(), X_OK) == 0;
}

// What a program is started with, freed at the end of the scope.
struct Attributes {
    explicit Attributes(int output) {
        posix_spawn_file_actions_init(&files);
        posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        if (output >= 0)
            posix_spawn_file_actions_adddup2(&files, output, STDOUT_FILENO);
        else
            posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addopen(&files, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addclosefrom_np(&files, STDERR_FILENO + 1);
        posix_spawnattr_init(&settings);
        sigset_t signals;
        sigfillset(&signals);
        posix_spawnattr_setsigdefault(&settings, &signals);
        sigemptyset(&signals);
        posix_spawnattr_setsigmask(&settings, &signals);
        posix_spawnattr_setpgroup(&settings, 0);
        posix_spawnattr_setflags(&settings,
                                 POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETPGROUP);
    }
    ~Attributes() {
        posix_spawnattr_destroy(&settings);
        posix_spawn_file_actions_destroy(&files);
    }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;

    posix_spawn_file_actions_t files;
    posix_spawnattr_t settings;
};

// Children whose end nobody has seen yet; only where they had to be our own.
class OwnChildren {
public:
    void Add(pid_t child) {
        const Locked hold(lock);
        children.push_back(child);
    }
    void Reap() {
        const Locked hold(lock);
        std::erase_if(children, [](pid_t child) { return waitpid(child, nullptr, WNOHANG) != 0; });
    }

private:
    Mutex lock;
    std::vector<pid_t> children GUARDED_BY(lock);
};
OwnChildren& Children() {
    static Lasting<OwnChildren> children;
    return children.value;
}

// Ours, without what a host that brings its own libraries sets for itself; ended by a null.
std::vector<char*> Environment() {
    std::vector<char*> variables;
    for (char** variable = environ; variable != nullptr && *variable != nullptr; ++variable) {
        const std::string_view text = *variable;
        if (!text.starts_with("LD_LIBRARY_PATH=") && !text.starts_with("LD_PRELOAD="))
            variables.push_back(*variable);
    }
    variables.push_back(nullptr);
    return variables;
}

}  // namespace

pid_t SpawnProgram(const std::vector<std::string>& arguments, int output) {
    std::vector<char*> words;
    words.reserve(arguments.size() + 1);
    for (const std::string& argument : arguments) words.push_back(const_cast<char*>(argument.c_str()));
    words.push_back(nullptr);
    const Attributes with(output);
    pid_t child = 0;
    const int fault =
        posix_spawn(&child, words[0], &with.files, &with.settings, words.data(), Environment().data());
    return fault == 0 ? child : 0;
}

std::string FindProgram(const std::string& name) {
    const char* const path = std::getenv("PATH");  // NOLINT(concurrency-mt-unsafe): a host does not change it
    std::string_view rest = path != nullptr ? path : "/usr/local/bin:/usr/bin:/bin";
    for (;;) {
        const std::size_t end = rest.find(':');
        const std::string_view folder = rest.substr(0, end);
        if (!folder.empty() && folder.front() == '/') {
            std::string program = std::string(folder) + '/' + name;
            if (IsExecutable(program)) return program;
        }
        if (end == std::string_view::npos) return {};
        rest.remove_prefix(end + 1);
    }
}

// The program becomes the system's child and not ours, by way of a small program that starts it and ends at
// once: a plug-in cannot learn of a child's end later without a thread or a signal handler in its host, and a
// child that ended unseen would stay in the process table.
bool StartProgram(const std::vector<std::string>& arguments) {
    Children().Reap();
    for (const char* const starter : {"/usr/bin/setsid", "/bin/setsid"}) {
        if (!IsExecutable(starter)) continue;
        std::vector<std::string> all = {starter, "--fork", "--"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        const pid_t child = SpawnProgram(all);
        if (child == 0) return false;
        int status = 0;
        pid_t ended;
        do ended = waitpid(child, &status, 0);
        while (ended == -1 && errno == EINTR);
        // Where the host lets the kernel forget all children there is no status, and nothing to complain of.
        return ended == -1 || (WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
    const pid_t child = SpawnProgram(arguments);
    if (child != 0) Children().Add(child);
    return child != 0;
}
