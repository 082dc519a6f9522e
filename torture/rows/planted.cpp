// That the watch over the process calls sees what it is there to see: from inside a process call, by way of
// the host's callback, each of these does what the audio thread must not do.
#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <semaphore.h>
#include <sys/mman.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <clocale>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iostream>
#include <locale>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "torture/session.h"
#include "torture/watch.h"

namespace {

using namespace std::chrono_literals;

volatile std::size_t size = 100;  // unknown to the compiler, which else leaves out what has no use
void* volatile kept = nullptr;
volatile int number = 0;

std::mutex plainLock;
std::recursive_mutex recursiveLock;
std::shared_mutex sharedLock;
std::condition_variable condition;
sem_t semaphore;
std::string text(100, 'x');
std::function<int()> smallFunction;
char bytes[16];
void* const block = std::malloc(64);
void* const mapped = mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);

struct Plant {
    const char* name;
    void (*violate)();
};

// GCC must not judge what nobody looks at.
#define IGNORED(call) (number = (call) != decltype(call){} ? 1 : 0)

const Plant plants[] = {
    {"malloc", [] { kept = std::malloc(size); }},
    {"calloc", [] { kept = std::calloc(size, 2); }},
    {"realloc", [] { kept = std::realloc(block, size); }},
    {"free", [] { std::free(block); }},
    {"aligned_alloc", [] { kept = std::aligned_alloc(64, 64 * size); }},
    {"new", [] { kept = new char[size]; }},
    {"delete", [] { delete static_cast<char*>(block); }},
    {"a string grows", [] { text += text; }},
    {"a function copied with its captures",
     [] {
         std::array<int, 20> captured{};
         captured[0] = number;
         smallFunction = [captured] { return captured[0]; };
     }},
    {"mmap", [] { kept = mmap(nullptr, size, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0); }},
    {"munmap", [] { IGNORED(munmap(mapped, 4096)); }},
    {"madvise", [] { IGNORED(madvise(mapped, 4096, MADV_DONTNEED)); }},
    {"open", [] { number = open("/dev/null", O_RDONLY); }},
    {"read", [] { IGNORED(read(0, bytes, 0)); }},
    {"write", [] { IGNORED(write(2, bytes, 0)); }},
    {"close", [] { IGNORED(close(99)); }},
    {"stat",
     [] {
         struct stat status;
         IGNORED(stat("/", &status));
     }},
    {"a file stream", [] { std::ofstream("/dev/null") << number; }},
    {"socket", [] { number = socket(AF_UNIX, SOCK_STREAM, 0); }},
    {"send", [] { IGNORED(send(99, bytes, 1, 0)); }},
    {"poll", [] { IGNORED(poll(nullptr, 0, 0)); }},
    {"select",
     [] {
         timeval none{};
         IGNORED(select(0, nullptr, nullptr, nullptr, &none));
     }},
    {"sleep_for", [] { std::this_thread::sleep_for(1us); }},
    {"usleep", [] { usleep(1); }},
    {"yield", [] { std::this_thread::yield(); }},
    {"a lock", [] { const std::lock_guard<std::mutex> held(plainLock); }},
    {"a recursive lock", [] { const std::lock_guard<std::recursive_mutex> held(recursiveLock); }},
    {"a shared lock", [] { const std::shared_lock<std::shared_mutex> held(sharedLock); }},
    {"a condition awaited",
     [] {
         std::unique_lock<std::mutex> held(plainLock, std::defer_lock);
         pthread_cond_wait(condition.native_handle(), plainLock.native_handle());
     }},
    {"a condition told", [] { condition.notify_one(); }},
    {"a semaphore", [] { sem_wait(&semaphore); }},
    {"a thread", [] { std::thread([] {}).join(); }},
    {"dlopen", [] { kept = dlopen("libm.so.6", RTLD_NOW); }},
    {"dlsym", [] { kept = dlsym(RTLD_DEFAULT, "sin"); }},
    {"fopen", [] { kept = std::fopen("/dev/null", "r"); }},
    {"printf", [] { std::printf("%d", number); }},
    {"cerr", [] { std::cerr << number; }},
    {"setlocale", [] { std::setlocale(LC_NUMERIC, "C"); }},
    {"newlocale", [] { kept = newlocale(LC_ALL_MASK, "C", nullptr); }},
    {"uselocale", [] { kept = uselocale(nullptr); }},
    {"syscall", [] { syscall(SYS_getpid); }},
    {"throw",
     [] {
         try {
             throw number;
         } catch (...) {
         }
     }},
    {"a static made at its first use",
     [] {
         static const std::string late = std::to_string(number);
         kept = const_cast<char*>(late.data());
     }},
};
constexpr int caught = 42;

// The violation ends the process that commits it, so it has one of its own. The last case commits none.
void TryPlant(Trial& trial) {
    const bool none = trial.number == std::size(plants);
    static void (*violate)() = nullptr;
    violate = none ? [] {} : plants[trial.number].violate;
    const pid_t child = fork();
    if (child == 0) {
        sem_init(&semaphore, 0, 1);
        Session session(48000);
        trial.Require(session.Open(), "the plug-in does not open");
        session.AllOutputsOn();
        const std::vector<float> music = BusyMusic(trial, 48000, 3);
        session.Process(trial, music.data(), Session::largestBlock);
        InsideCall::AllowLocksIn(&session.Object().noteRecorder, sizeof(TNoteRecorder));
        InsideCall::AllowLocksIn(&session.Recording(), sizeof(TRTRecording));
        InsideCall::told = [](const char*) { _exit(caught); };
        session.atHostCall = [] { violate(); };
        session.watched = true;
        for (std::size_t at = 0; at + 512 <= music.size(); at += 512)
            session.Process(trial, music.data() + at, 512);
        trial.Require(session.events > 0, "the host was never called");
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    if (none)
        trial.Require(status == 0, "something was caught where nothing is wrong");
    else
        trial.Require(WIFEXITED(status) && WEXITSTATUS(status) == caught,
                      std::string("not caught: ") + plants[trial.number].name);
}

const Registered planted({"RTS-2", "what a process call must not do is caught, each kind by itself",
                          inRelease, std::size(plants) + 1, 1, 20, TryPlant});

}  // namespace
