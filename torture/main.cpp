// Tries what we promise on reliability, row by row, each case in a process that may crash.
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <thread>

#include "torture/row.h"

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr std::size_t longestText = 1000;

// A figure that cases measured; written by workers, one after the other in each, read when they have ended.
struct Measured {
    std::array<char, 48> name{};
    double largest = 0;
};

// What a worker and the program share.
struct Desk {
    std::atomic<std::uint64_t> inHand{0};  // the case in progress
    std::atomic<std::uint64_t> done{0};    // cases held
    std::array<char, longestText> failure{};
    std::array<Measured, 4> figures{};
};
Desk* desk = nullptr;  // the worker's own

struct Options {
    std::vector<std::string> rows;
    std::uint64_t seed = 1;
    double seconds = 20;
    bool isLong = false;
    std::optional<std::uint64_t> onlyCase;
    std::optional<std::uint64_t> cases;
    unsigned jobs = std::max(1U, std::thread::hardware_concurrency());
    bool list = false;
};

constexpr unsigned thisBuild =
#if defined(__SANITIZE_ADDRESS__)
    inAddress;
#elif defined(__SANITIZE_THREAD__)
    inThread;
#else
    inRelease;
#endif

struct Worker {
    pid_t process = -1;
    Desk* shared = nullptr;
    std::uint64_t seen = 0;   // the case it was last seen at,
    Clock::time_point since;  // and since when
    std::uint64_t begin = 0;
};

struct Outcome {
    std::uint64_t done = 0;
    std::string failure;
    std::vector<Measured> figures;
};

void KeepLargest(std::vector<Measured>& kept, const Measured& figure) {
    if (figure.name[0] == '\0') return;
    for (Measured& known : kept)
        if (known.name == figure.name) {
            known.largest = std::max(known.largest, figure.largest);
            return;
        }
    kept.push_back(figure);
}

class RowRun {
public:
    RowRun(const Row& tried, const Options& given) : row(tried), options(given) {
        first = options.onlyCase.value_or(0);
        end = options.onlyCase ? first + 1 : std::min(row.cases, options.cases.value_or(row.cases));
        next = first;
        workers.resize(std::min<std::size_t>(options.jobs, row.batch >= row.cases ? 1 : options.jobs));
        for (Worker& worker : workers) {
            void* const page =
                mmap(nullptr, sizeof(Desk), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
            if (page == MAP_FAILED) std::perror("mmap"), std::exit(2);
            worker.shared = new (page) Desk;
        }
    }
    ~RowRun() {
        for (const Worker& worker : workers) munmap(worker.shared, sizeof(Desk));
    }
    RowRun(const RowRun&) = delete;
    RowRun& operator=(const RowRun&) = delete;

    Outcome Run() {
        const Clock::time_point stop =
            Clock::now() + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(
                               options.isLong ? row.longSeconds : options.seconds));
        for (;;) {
            const bool more = next < end && outcome.failure.empty() && (Clock::now() < stop || next == first);
            bool busy = false;
            for (Worker& worker : workers) {
                if (worker.process == -1 && more && next < end) Start(worker);
                if (worker.process != -1) busy = true, Watch(worker, stop);
            }
            if (!busy) break;
            std::this_thread::sleep_for(2ms);
        }
        return outcome;
    }

private:
    void Start(Worker& worker) {
        const std::uint64_t begin = next;
        next = std::min(end, begin + row.batch);
        new (worker.shared) Desk;
        worker.shared->inHand = worker.seen = worker.begin = begin;
        worker.since = Clock::now();
        std::fflush(nullptr);
        worker.process = fork();
        if (worker.process == -1) std::perror("fork"), std::exit(2);
        if (worker.process != 0) return;
        desk = worker.shared;
        for (std::uint64_t number = begin; number < next; ++number) {
            desk->inHand = number;
            Trial trial(options.seed, row.id, number);
            row.tryCase(trial);
            ++desk->done;
        }
        std::exit(0);
    }
    // A batch that is still at work when the row's time is up ends after its case in hand.
    void Watch(Worker& worker, Clock::time_point stop) {
        int status = 0;
        const pid_t ended = waitpid(worker.process, &status, WNOHANG);
        if (ended == 0) {
            const std::uint64_t now = worker.shared->inHand;
            if (now != worker.seen) worker.seen = now, worker.since = Clock::now();
            const bool late = Clock::now() - worker.since > std::chrono::duration<double>(row.secondsEach);
            const bool enough = Clock::now() > stop + 1s && worker.shared->done > 0;
            if (!late && !enough) return;
            kill(worker.process, SIGKILL);
            waitpid(worker.process, &status, 0);
            if (late) Failed(worker, "no end in sight");
        } else if (WIFSIGNALED(status)) {
            Failed(worker, std::string("ended by signal ") + strsignal(WTERMSIG(status)));
        } else if (WEXITSTATUS(status) != 0) {
            Failed(worker, "ended with " + std::to_string(WEXITSTATUS(status)));
        } else if (worker.begin + worker.shared->done < std::min(end, worker.begin + row.batch)) {
            Failed(worker, "the process ended before its case did");
        }
        outcome.done += worker.shared->done;
        for (const Measured& figure : worker.shared->figures) KeepLargest(outcome.figures, figure);
        worker.process = -1;
    }
    void Failed(const Worker& worker, const std::string& how) {
        if (!outcome.failure.empty()) return;
        const char* const told = worker.shared->failure.data();
        outcome.failure = "case " + std::to_string(worker.shared->inHand) + ": " +
                          (*told != '\0' ? told : how) + "\n    again: orva-torture " + row.id + " --seed " +
                          std::to_string(options.seed) + " --case " + std::to_string(worker.shared->inHand);
    }

    const Row& row;
    const Options& options;
    std::uint64_t first = 0, end = 0, next = 0;
    std::vector<Worker> workers;
    Outcome outcome;
};

int Try(const Options& options) {
    std::vector<Row> rows;
    for (const Row& row : Registered::All()) {
        const bool named = std::find(options.rows.begin(), options.rows.end(), row.id) != options.rows.end();
        const bool usual = (row.builds & thisBuild) != 0 && (options.isLong || options.list || !row.onlyLong);
        if (named || (options.rows.empty() && usual)) rows.push_back(row);
    }
    if (!options.rows.empty() && rows.size() < options.rows.size()) {
        std::fprintf(stderr, "orva-torture: no such row (--list names them)\n");
        return 2;
    }
    std::sort(rows.begin(), rows.end(),
              [](const Row& a, const Row& b) { return std::string_view(a.id) < b.id; });
    if (options.list) {
        for (const Row& row : rows)
            std::printf("%-6s %12llu  %s\n", row.id, static_cast<unsigned long long>(row.cases), row.promise);
        return 0;
    }
    std::size_t failed = 0;
    for (const Row& row : rows) {
        const Clock::time_point begin = Clock::now();
        const Outcome outcome = RowRun(row, options).Run();
        const double seconds = std::chrono::duration<double>(Clock::now() - begin).count();
        std::printf("%-6s %-6s %llu of %llu cases, %.1f s", row.id,
                    outcome.failure.empty() ? "holds" : "BROKEN",
                    static_cast<unsigned long long>(outcome.done), static_cast<unsigned long long>(row.cases),
                    seconds);
        for (const Measured& figure : outcome.figures)
            std::printf(", %s %.6g", figure.name.data(), figure.largest);
        std::printf("  %s\n", row.promise);
        if (!outcome.failure.empty()) std::printf("    %s\n", outcome.failure.c_str()), ++failed;
        std::fflush(stdout);
    }
    std::printf("rows: %zu held, %zu broken, seed %llu\n", rows.size() - failed, failed,
                static_cast<unsigned long long>(options.seed));
    return failed == 0 && !rows.empty() ? 0 : 1;
}

}  // namespace

Trial::Trial(std::uint64_t runSeed, std::string_view row, std::uint64_t caseNumber) : number(caseNumber) {
    std::vector<std::uint32_t> words(row.begin(), row.end());
    for (const std::uint64_t word : {runSeed, caseNumber}) {
        words.push_back(static_cast<std::uint32_t>(word));
        words.push_back(static_cast<std::uint32_t>(word >> 32));
    }
    std::seed_seq mixed(words.begin(), words.end());
    random.seed(mixed);
}

void Trial::Fail(std::string_view what) const {
    const std::size_t length = std::min(what.size(), longestText - 1);
    std::memcpy(desk->failure.data(), what.data(), length);
    desk->failure[length] = '\0';
    _exit(1);
}

void Trial::Figure(std::string_view name, double value) {
    for (Measured& figure : desk->figures) {
        const bool fresh = figure.name[0] == '\0';
        if (!fresh && name != figure.name.data()) continue;
        if (fresh) name.copy(figure.name.data(), figure.name.size() - 1);
        figure.largest = fresh ? value : std::max(figure.largest, value);
        return;
    }
}

int main(int count, char** words) {
    Options options;
    CLI::App app("Tries what is promised of the plug-in, row by row.", "orva-torture");
    app.add_option("ROW", options.rows,
                   "rows to try; if none is named, all of this build, the longest only with --long");
    app.add_option("--seed", options.seed, "of all that is random");
    app.add_option("--seconds", options.seconds, "for each row, if its cases last that long")
        ->check(CLI::PositiveNumber);
    app.add_option_function<double>(
        "--minutes", [&](double minutes) { options.seconds = minutes * 60; }, "likewise");
    app.add_flag("--long", options.isLong, "as long for each row as its importance asks for");
    app.add_option("--cases", options.cases, "at most so many of each row");
    app.add_option("--case", options.onlyCase, "this one alone");
    app.add_option("--jobs", options.jobs, "processes at a time")->check(CLI::PositiveNumber);
    app.add_flag("--list", options.list, "name the rows and their sizes");
    CLI11_PARSE(app, count, words);
    return Try(options);
}
