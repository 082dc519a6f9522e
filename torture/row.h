#pragma once
#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

// One numbered case of a row: what it may use, and how it says that the promise is broken.
class Trial {
public:
    Trial(std::uint64_t runSeed, std::string_view row, std::uint64_t caseNumber);

    // Uniform in [0, count), count > 0.
    std::uint64_t Below(std::uint64_t count) { return random() % count; }
    bool OneIn(std::uint64_t count) { return Below(count) == 0; }
    // Ends the case, and so its process, as failed, unless `holds`. `what` is read by somebody who has only
    // the line before them: say what was expected, and what was met.
    void Require(bool holds, std::string_view what) const {
        if (!holds) Fail(what);
    }
    [[noreturn]] void Fail(std::string_view what) const;
    // A measured figure for the row's line in the report, the largest of all cases: "longest hold, us".
    static void Figure(std::string_view name, double value);

    const std::uint64_t number;  // of the case, from 0
    std::mt19937_64 random;      // seeded by run, row and number, so that each case repeats by itself
};

// The builds in which a row is tried.
enum Builds : unsigned { inRelease = 1, inAddress = 2, inThread = 4, inAll = 7 };

// A promise and how it is tried: by `cases` cases, each of which holds or fails. A worker process runs
// `batch` of them one after the other; one that crashes, hangs for longer than `secondsEach` or ends fails
// its case.
struct Row {
    const char* id;       // as docs/promises.md lists it
    const char* promise;  // one line
    unsigned builds;      // of Builds
    std::uint64_t cases;  // the whole size
    std::uint64_t batch;  // cases in one process, at least 1
    double secondsEach;   // limit for one case
    void (*tryCase)(Trial&);
    double longSeconds = 6;  // of a long run, unless all cases are tried before
    bool onlyLong = false;   // a single case is too long for a share
};

// A row's source file makes one of these per row, and the program finds it.
struct Registered {
    explicit Registered(const Row& row) { All().push_back(row); }
    static std::vector<Row>& All() {
        static std::vector<Row> rows;
        return rows;
    }
};
