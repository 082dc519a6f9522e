#include "tests/support/trial.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

// What a child and its parent share.
struct Page {
    std::atomic<std::uint64_t> current{0};  // the case in progress
    std::atomic<std::uint64_t> done{0};     // cases passed
    std::array<char, 1500> failure{};
};
Page* page = nullptr;  // the child's own

struct Child {
    pid_t process = -1;
    Page* shared = nullptr;
    std::uint64_t seen = 0;   // the case it was last seen at,
    Clock::time_point since;  // and since when
    std::uint64_t begin = 0, end = 0;
};

std::string TestName() {
    const testing::TestInfo* const test = testing::UnitTest::GetInstance()->current_test_info();
    return test == nullptr ? "" : std::string(test->test_suite_name()) + "." + test->name();
}

class Runner {
public:
    Runner(const Trials& given, const std::function<void(Trial&)>& caseBody) : trials(given), body(caseBody) {
        end = trials.fixed ? trials.cases : Scaled(trials.cases);
        if (const char* const only = std::getenv("ORVA_TEST_CASE")) {
            next = std::strtoull(only, nullptr, 10);
            end = next + 1;
        }
        const unsigned cores = std::max(1U, std::thread::hardware_concurrency());
        children.resize(trials.alone ? 1 : cores);
        for (Child& child : children) {
            void* const memory =
                mmap(nullptr, sizeof(Page), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
            if (memory == MAP_FAILED) std::abort();
            child.shared = new (memory) Page;
        }
    }
    ~Runner() {
        for (const Child& child : children) munmap(child.shared, sizeof(Page));
    }
    Runner(const Runner&) = delete;
    Runner& operator=(const Runner&) = delete;

    void Run() {
        for (bool busy = true; busy;) {
            busy = false;
            for (Child& child : children) {
                if (child.process == -1 && next < end && failure.empty()) Start(child);
                if (child.process != -1) busy = true, Watch(child);
            }
            if (busy) std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        std::printf("[   CASES  ] %llu\n", static_cast<unsigned long long>(done));
        if (!failure.empty()) ADD_FAILURE() << failure;
    }

private:
    void Start(Child& child) {
        child.begin = next;
        child.end = next = std::min(end, next + trials.batch);
        new (child.shared) Page;
        child.shared->current = child.seen = child.begin;
        child.since = Clock::now();
        std::fflush(nullptr);
        child.process = fork();
        if (child.process == -1) std::abort();
        if (child.process != 0) return;
        page = child.shared;
        for (std::uint64_t number = child.begin; number < child.end; ++number) {
            page->current = number;
            Trial trial(TestName(), number);
            body(trial);
            if (testing::Test::HasFailure()) trial.Fail("see the assertion above");
            ++page->done;
        }
        std::exit(0);
    }
    void Watch(Child& child) {
        int status = 0;
        const pid_t ended = waitpid(child.process, &status, WNOHANG);
        if (ended == 0) {
            const std::uint64_t now = child.shared->current;
            if (now != child.seen) child.seen = now, child.since = Clock::now();
            if (Clock::now() - child.since < std::chrono::duration<double>(trials.seconds)) return;
            kill(child.process, SIGKILL);
            waitpid(child.process, &status, 0);
            Failed(child, "timeout");
        } else if (WIFSIGNALED(status)) {
            Failed(child, std::string("ended by signal ") + strsignal(WTERMSIG(status)));
        } else if (WEXITSTATUS(status) != 0) {
            Failed(child, "ended with " + std::to_string(WEXITSTATUS(status)));
        } else if (child.begin + child.shared->done < child.end) {
            Failed(child, "the process ended before its case did");
        }
        done += child.shared->done;
        child.process = -1;
    }
    void Failed(const Child& child, const std::string& how) {
        if (!failure.empty()) return;
        const std::string number = std::to_string(child.shared->current);
        const char* const reported = child.shared->failure.data();
        failure = "case " + number + ": " + (*reported != '\0' ? reported : how) +
                  "\nagain: ORVA_TEST_SEED=" + std::to_string(RunSeed()) + " ORVA_TEST_CASE=" + number + " " +
                  program_invocation_name + " --gtest_filter=" + TestName();
    }

    const Trials trials;
    const std::function<void(Trial&)>& body;
    std::uint64_t next = 0, end = 0, done = 0;
    std::string failure;
    std::vector<Child> children;
};

}  // namespace

std::uint64_t RunSeed() {
    static const std::uint64_t seed = [] {
        const char* const given = std::getenv("ORVA_TEST_SEED");
        const std::uint64_t value =
            given != nullptr
                ? std::strtoull(given, nullptr, 10)
                : static_cast<std::uint64_t>(Clock::now().time_since_epoch().count()) % 1000000007;
        std::printf("[   SEED   ] ORVA_TEST_SEED=%llu\n", static_cast<unsigned long long>(value));
        return value;
    }();
    return seed;
}

std::uint64_t Scaled(std::uint64_t count) {
    const char* const given = std::getenv("ORVA_TEST_SCALE");
    const double scale = given != nullptr ? std::strtod(given, nullptr) : 1;
    return std::max<std::uint64_t>(
        1, static_cast<std::uint64_t>(std::llround(scale * static_cast<double>(count))));
}

Trial::Trial(std::string_view test, std::uint64_t caseNumber) : number(caseNumber) {
    std::vector<std::uint32_t> words(test.begin(), test.end());
    for (const std::uint64_t word : {RunSeed(), caseNumber}) {
        words.push_back(static_cast<std::uint32_t>(word));
        words.push_back(static_cast<std::uint32_t>(word >> 32));
    }
    std::seed_seq mixed(words.begin(), words.end());
    random.seed(mixed);
}

void Trial::Fail(std::string_view what) const {
    const std::size_t length = std::min(what.size(), page->failure.size() - 1);
    std::memcpy(page->failure.data(), what.data(), length);
    page->failure[length] = '\0';
    std::fflush(nullptr);
    _exit(1);
}

void Trial::Pass() {
    ++page->done;
    std::fflush(nullptr);
    _exit(0);
}

void RunTrials(const Trials& trials, const std::function<void(Trial&)>& body) {
    RunSeed();
    Runner(trials, body).Run();
}
