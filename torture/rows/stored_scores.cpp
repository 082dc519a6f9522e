// The reader of stored scores before files that lie, and what is written before what was read.
#include <sys/resource.h>
#include <unistd.h>

#include <bit>
#include <ctime>
#include <fstream>
#include <limits>

#include "torture/row.h"
#include "torture/rows/scores.h"

namespace {

double ThreadSeconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

bool AnyOverlap(const TNotes& score) {
    return std::any_of(score.points.begin(), score.points.end(),
                       [](const TNoteBoundary* point) { return point->sounding[0].size() > 1; });
}

struct Reading {
    std::string failure;
    std::size_t memory = 0;  // most bytes at once
    double seconds = 0;      // of processor time
    bool overlaps = false;
};

// Reads the file and holds the reader to what is promised of every file.
Reading ReadAny(Trial& trial, const Bytes& bytes) {
    MemoryBudget observer(std::size_t{1} << 40);
    Reading reading;
    const double begin = ThreadSeconds();
    {
        const auto score = std::make_unique<TNotes>();
        reading.failure = FailureOfReading(*score, bytes);
        reading.overlaps = AnyOverlap(*score);
    }
    reading.seconds = ThreadSeconds() - begin;
    reading.memory = observer.Highest();
    trial.Require(IsStatedFailure(reading.failure), "raised <" + reading.failure + ">");
    trial.Require(reading.memory <= TNotes::readerBudget, "memory past the budget");
    trial.Require(reading.overlaps || reading.memory <= 16384 + 1024 * bytes.size(),
                  "memory out of proportion to the file");
    trial.Require(reading.seconds <= 5, std::to_string(reading.seconds) + " s for a file");
    return reading;
}

void Put32(Bytes& bytes, std::size_t at, std::uint32_t value) {
    for (std::size_t byte = 0; byte < 4 && at + byte < bytes.size(); ++byte)
        bytes[at + byte] = static_cast<std::uint8_t>(value >> (24 - 8 * byte));
}

// --- FIL-2 ---

constexpr std::uint64_t seedFiles = 200, longestSeed = 4096;
constexpr std::size_t headerSize = 18;  // signature, version, rate, number of notes

// File number `index`, of at most longestSeed bytes, the later ones longer.
Bytes SeedFile(std::uint64_t index) {
    std::mt19937_64 random(index);
    for (std::uint64_t most = index * 160 / seedFiles + 1;; --most) {
        Bytes bytes = Written(*RandomScore(random, most));
        if (bytes.size() <= longestSeed) return bytes;
    }
}

// All that is done to one place of one file.
void TryDamage(Trial& trial) {
    static std::vector<Bytes> made(seedFiles);
    Bytes& whole = made[trial.number % seedFiles];
    if (whole.empty()) whole = SeedFile(trial.number % seedFiles);
    const std::size_t at = trial.number / seedFiles;
    if (at >= whole.size()) return;

    const std::string cut =
        ReadAny(trial, Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(at))).failure;
    trial.Require(cut == endOfData, "the first " + std::to_string(at) + " bytes: <" + cut + ">");
    Bytes bytes = whole;
    for (unsigned bit = 0; bit < 8; ++bit) {
        bytes[at] = static_cast<std::uint8_t>(whole[at] ^ 1U << bit);
        ReadAny(trial, bytes);
    }
    for (const int byte : {0x00, 0x01, 0x7F, 0x80, 0xFF}) {
        bytes[at] = static_cast<std::uint8_t>(byte);
        ReadAny(trial, bytes);
    }
    if (at % 4 != headerSize % 4) return;  // the fields of the notes begin where the header ends
    for (const std::uint32_t field : {0U, 1U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
        bytes = whole;
        Put32(bytes, at, field);
        ReadAny(trial, bytes);
    }
}

const Registered damage({"FIL-2", "reads a damaged score or says what is wrong", inRelease | inAddress,
                         seedFiles* longestSeed, 1000, 60, TryDamage, 50});

// --- FIL-3 ---

// A mebibyte more than the process has now, and no more. The reader's own count may miss what it forgot to
// count; the system does not. Under a sanitizer, whose own maps are beyond all limits, fuzzing watches that.
class LittleMemory {
public:
    LittleMemory() {
        getrlimit(RLIMIT_AS, &usual);
#if !defined(__SANITIZE_ADDRESS__)
        std::size_t pages = 0;
        std::ifstream("/proc/self/statm") >> pages;
        const rlimit little{pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)) + (1 << 20),
                            usual.rlim_max};
        setrlimit(RLIMIT_AS, &little);
#endif
    }
    ~LittleMemory() {
        setrlimit(RLIMIT_AS, &usual);
    }
    LittleMemory(const LittleMemory&) = delete;
    LittleMemory& operator=(const LittleMemory&) = delete;

private:
    rlimit usual{};
};

// A file of 64 bytes that claims to hold a great deal of one kind; all that it needs not lie about is random.
void TryLie(Trial& trial) {
    constexpr std::size_t size = 64;
    Bytes bytes = {'T', 'N', 'o', 't', 'e', 's', 0, 0, 0, 1, 0, 0, 0x56, 0x22};
    const auto add = [&bytes](std::uint32_t value) {
        bytes.resize(bytes.size() + 4);
        Put32(bytes, bytes.size() - 4, value);
    };
    const std::uint64_t kind = trial.number % 4;
    add(kind == 0 ? 0x7FFFFFFF : 0);                // notes
    if (kind > 0) add(kind == 1 ? 0xFFFFFFFF : 0);  // layers
    if (kind > 1) add(kind == 2 ? 0xFFFFFFFF : 0);  // title
    if (kind > 2) {
        for (int byte = 0; byte < 14; ++byte) bytes.push_back(static_cast<std::uint8_t>(trial.Below(256)));
        add(0xFFFFFFFF), add(0xFFFFFFFF);  // bars
    }
    const std::size_t honest = bytes.size();
    bytes.resize(size);
    for (std::size_t i = honest; i < size; ++i) bytes[i] = static_cast<std::uint8_t>(trial.Below(256));
    // The first layer's name would be a lie of its own; a short one leaves the number of layers to be met.
    if (kind == 1) Put32(bytes, honest, static_cast<std::uint32_t>(trial.Below(8)));
    const LittleMemory little;
    const Reading reading = ReadAny(trial, bytes);
    trial.Require(reading.failure == endOfData, "raised <" + reading.failure + ">");
    trial.Require(reading.memory <= std::size_t{1} << 20, std::to_string(reading.memory) + " bytes taken");
    trial.Require(reading.seconds <= 0.01, std::to_string(reading.seconds) + " s");
}

const Registered lies({"FIL-3", "believes no count in a file", inRelease | inAddress, 4 * 100, 100, 20,
                       TryLie});

// --- FIL-4 ---

constexpr std::uint32_t crowds[] = {10, 100, 1000, 10000, 100000};

double MiBResident() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024;
}

// Notes that all sound together, in one of three orders, on one pitch or on all.
void TryCrowd(Trial& trial) {
    const std::uint32_t count = crowds[trial.number % std::size(crowds)];
    const std::uint64_t order = trial.number / std::size(crowds) % 3;
    const bool onePitch = trial.number / std::size(crowds) / 3 != 0;
    MemoryStream file(Bytes{'T', 'N', 'o', 't', 'e', 's', 0, 0, 0, 1, 0, 0, 0x56, 0x22});
    file.SeekToEnd();
    PutU32(file, count);
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::uint32_t place = order == 0   ? i
                                    : order == 1 ? count - 1 - i
                                                 : static_cast<std::uint32_t>(trial.Below(count));
        PutU32(file, place);
        PutU32(file, 2 * count - place);
        PutU8(file, onePitch ? 69 : static_cast<std::uint8_t>(i));
        for (int byte = 0; byte < 15; ++byte) PutU8(file, 0);
    }
    for (int byte = 0; byte < 4 + 4 + 14 + 8; ++byte) PutU8(file, 0);  // no layers, no title, no bars

    const double before = MiBResident();
    MemoryBudget observer(std::size_t{1} << 40);
    const auto score = std::make_unique<TNotes>();
    const double begin = ThreadSeconds();
    const std::string failure = FailureOfReading(*score, file.data);
    const double seconds = ThreadSeconds() - begin;
    trial.Require(failure == (score->notes.size() == count ? "" : "memory"), "raised <" + failure + ">");
    trial.Require(count > 1000 || failure.empty(), "a thousand notes are too many");
    trial.Require(observer.Highest() <= TNotes::readerBudget, "memory past the budget");
    Trial::Figure("resident, MiB", MiBResident() - before);
    Trial::Figure("longest, s", seconds);
    trial.Require(count > 10000 || seconds <= 10, std::to_string(seconds) + " s");
}

const Registered crowd({"FIL-4", "reads notes that all sound together within its memory",
                        inRelease | inAddress, std::size(crowds) * 3 * 2, 1, 120, TryCrowd});

// --- FIL-5 ---

double ThereAndBack(double value) {
    MemoryStream stream;
    PutDouble(stream, value);
    stream.Rewind();
    return GetDouble(stream);
}

bool AreClose(double a, double b) {
    return a == b || std::fabs(a - b) <= 0x1p-60 * std::fabs(a);
}

// Any bits, and any ten bytes that a file may hold, with each exponent in turn.
void TryDoubles(Trial& trial) {
    for (int count = 0; count < 10; ++count) {
        const auto value = std::bit_cast<double>(trial.random());
        const double back = ThereAndBack(value);
        trial.Require(value != value ? back == 0.0 : AreClose(value, back),
                      std::to_string(value) + " comes back as " + std::to_string(back));
    }
    using Limits = std::numeric_limits<double>;
    for (const double value : {Limits::infinity(), -Limits::infinity(), Limits::denorm_min(), Limits::min(),
                               Limits::max(), Limits::lowest(), 0.0, -0.0})
        trial.Require(AreClose(value, ThereAndBack(value)), "not back: " + std::to_string(value));
    MemoryStream stored;
    PutU64(stored, trial.random());
    PutU16(stored, static_cast<std::uint16_t>(trial.number));
    stored.Rewind();
    const double read = GetDouble(stored);
    trial.Require(read == read && AreClose(read, ThereAndBack(read)), "stored bytes read as no number");
}

void TryScore(Trial& trial) {
    TryDoubles(trial);
    const auto score = RandomScore(trial.random, 100);
    const auto read = std::make_unique<TNotes>();
    const std::string failure = FailureOfReading(*read, Written(*score));
    trial.Require(failure.empty(), "what was written raises <" + failure + ">");
    // The second file has no tags, and one more layer, without a name.
    for (TNote* const note : score->notes) note->tag = 0;
    score->ResizeLayers(score->layers.size() + 1);
    trial.Require(Written(*read) == Written(*score), "what was read is written otherwise");
}

const Registered scores({"FIL-5", "writes again what it read", inRelease | inAddress, 1000000, 2000, 20,
                         TryScore});

}  // namespace
