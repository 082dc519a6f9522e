#include "tests/support/trial.h"

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// What a child and its parent share.
struct Page {
    std::atomic<std::uint64_t> current{0};  // the case in progress
    std::atomic<std::uint64_t> done{0};     // cases passed
    std::array<char, 1500> failure{};
};
Page* page = nullptr;  // the child's own

struct Child {
    Page* shared = nullptr;
    std::uint64_t begin = 0, end = 0;
};

std::string TestName() {
    const testing::TestInfo* const test = testing::UnitTest::GetInstance()->current_test_info();
    return test == nullptr ? "" : std::string(test->test_suite_name()) + "." + test->name();
}

pid_t Start(Child& child, const Trials& trials, const std::function<void(Trial&)>& body) {
    void* const memory =
        mmap(nullptr, sizeof(Page), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) std::abort();
    child.shared = new (memory) Page;
    std::fflush(nullptr);
    const pid_t process = fork();
    if (process == -1) std::abort();
    if (process != 0) return process;
    page = child.shared;
    for (std::uint64_t number = child.begin; number < child.end; ++number) {
        page->current = number;
        alarm(trials.seconds);  // whose signal ends the process
        Trial trial(TestName(), number);
        [&]() noexcept { body(trial); }();  // an exception ends the process
        if (testing::Test::HasFailure()) trial.Fail("see the assertion above");
        ++page->done;
    }
    alarm(trials.seconds);
    std::exit(0);
}

// What went wrong in a child that has ended, and what repeats it; nothing if all is well.
std::string Fault(const Child& child, int status) {
    std::string how;
    if (WIFSIGNALED(status))
        how = WTERMSIG(status) == SIGALRM ? "timeout" : std::string("signal ") + strsignal(WTERMSIG(status));
    else if (WEXITSTATUS(status) != 0)
        how = "ended with " + std::to_string(WEXITSTATUS(status));
    else if (child.begin + child.shared->done < child.end)
        how = "the process ended before its case did";
    else
        return {};
    if (child.shared->failure[0] != '\0') how = child.shared->failure.data();
    const std::string number = std::to_string(child.shared->current);
    return "case " + number + ": " + how + "\nagain: ORVA_TEST_SEED=" + std::to_string(RunSeed()) +
           " ORVA_TEST_CASE=" + number + " " + program_invocation_name + " --gtest_filter=" + TestName();
}

}  // namespace

std::uint64_t RunSeed() {
    static const std::uint64_t seed = [] {
        const char* const given = std::getenv("ORVA_TEST_SEED");
        const std::uint64_t value =
            given != nullptr
                ? std::strtoull(given, nullptr, 10)
                : static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count()) %
                      1000000007;
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
    const char* const only = std::getenv("ORVA_TEST_CASE");
    std::uint64_t next = only != nullptr ? std::strtoull(only, nullptr, 10) : 0, done = 0;
    const std::uint64_t end = only != nullptr ? next + 1 : trials.fixed ? trials.cases : Scaled(trials.cases);
    const std::size_t most = std::max(1U, std::thread::hardware_concurrency());
    std::map<pid_t, Child> children;
    std::string failure;
    while ((next < end && failure.empty()) || !children.empty()) {
        if (next < end && failure.empty() && children.size() < most) {
            Child child{nullptr, next, std::min(end, next + trials.batch)};
            next = child.end;
            const pid_t process = Start(child, trials, body);
            children[process] = child;
            continue;
        }
        int status = 0;
        const pid_t ended = waitpid(-1, &status, 0);
        if (ended == -1) std::abort();
        if (children.count(ended) == 0) continue;
        const Child child = children[ended];
        children.erase(ended);
        done += child.shared->done;
        if (failure.empty()) failure = Fault(child, status);
        munmap(child.shared, sizeof(Page));
    }
    std::printf("[   CASES  ] %llu\n", static_cast<unsigned long long>(done));
    if (!failure.empty()) ADD_FAILURE() << failure;
}
