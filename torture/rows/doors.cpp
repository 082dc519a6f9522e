// The same audio gives the same, by whichever call, beside whichever other instance, in whichever process.
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <numeric>
#include <optional>
#include <string>

#include "torture/row.h"
#include "torture/rows/plug_in.h"
#include "torture/rows/samples.h"

namespace {

// --- PRO-9 ---

constexpr int blocksPerCase = 100;

// Sample values halfway between two steps of k / 30000, k itself 0 at zero. On the steps themselves a product
// in single precision may round up to k where one in double precision stays just below and is cut to k - 1;
// half a step off, no rounding of the product reaches a whole number.
double HalfwayBehind(int k) {
    return (k + (k > 0 ? 0.5 : k < 0 ? -0.5 : 0.0)) / 30000;
}

std::vector<int> RandomSteps(Trial& trial, bool all) {
    std::vector<int> steps(all ? 65536 : 1 + trial.Below(700));
    std::iota(steps.begin(), steps.end(), -32768);
    if (all) std::shuffle(steps.begin(), steps.end(), trial.random);
    const int range = 1 << trial.Below(16);  // a loud block or a soft one
    if (!all)
        for (int& step : steps)
            step = static_cast<int>(trial.Below(2 * static_cast<unsigned>(range))) - range;
    return steps;
}

template <typename Sample>
void FeedSteps(Trial& trial, PlugIn& plugIn, Door door, const std::vector<int>& steps) {
    std::vector<Sample> in, out(steps.size(), Sample(0.125));
    for (const int step : steps) in.push_back(static_cast<Sample>(HalfwayBehind(step)));
    plugIn.Feed(door, in.data(), out.data(), static_cast<std::int32_t>(in.size()));
    for (std::size_t i = 0; i < in.size(); ++i)
        trial.Require(out[i] == (door == accumulating ? in[i] + Sample(0.125) : in[i]),
                      "not the sum, or not the input");
}

// One instance meets a call at random for each block, the other always the same.
void TryDoors(Trial& trial) {
    PlugIn mixed, plain;
    for (int count = 0; count < blocksPerCase; ++count) {
        const std::vector<int> steps = RandomSteps(trial, count == 0 && trial.number < 3);
        const std::vector<short> due(steps.begin(), steps.end());
        for (PlugIn* const plugIn : {&mixed, &plain}) {
            const auto door = plugIn == &plain ? replacing : static_cast<Door>(trial.Below(doorCount));
            door == doubleReplacing ? FeedSteps<double>(trial, *plugIn, door, steps)
                                    : FeedSteps<float>(trial, *plugIn, door, steps);
            trial.Require(plugIn->Object().samples == due, "a call makes other 16-bit samples of the block");
        }
    }
    trial.Require(mixed.events == plain.events, "the calls give other events");
}

const Registered doorRow({"PRO-9", "hears the same through each of its three process calls",
                          inRelease | inAddress, 100, 10, 20, TryDoors});

// --- PRO-10 ---

constexpr double pieceSeconds = 60;
constexpr std::int32_t rate = 44100;
constexpr const char* pieceVariable = "ORVA_TORTURE_PIECE";  // for the second process: piece, descriptor

std::vector<float> Piece(std::uint64_t seed) {
    std::mt19937_64 random(seed);
    return RandomMusic(random, pieceSeconds, rate);
}

std::string Bytes(const std::vector<SentEvent>& events) {
    std::string text;
    for (const SentEvent& event : events) {
        text += std::to_string(event.at);
        for (const unsigned char byte : event.message) text += " " + std::to_string(byte);
        text += "\n";
    }
    return text;
}

std::string EventsOfPiece(std::uint64_t seed) {
    PlugIn plugIn(rate);
    plugIn.Play(Piece(seed));
    return Bytes(plugIn.events);
}

// What this program gives for the piece when it is started afresh.
std::string EventsElsewhere(Trial& trial, std::uint64_t seed) {
    int ends[2];
    trial.Require(pipe(ends) == 0, "no pipe");
    const pid_t process = fork();
    if (process == 0) {
        const std::string told = std::to_string(seed) + " " + std::to_string(ends[1]);
        setenv(pieceVariable, told.c_str(), 1);
        close(ends[0]);
        dup2(ends[1], STDOUT_FILENO);  // what else is printed goes behind the events
        execl("/proc/self/exe", "orva-torture", "PRO-10", "--case", "0", "--jobs", "1", nullptr);
        _exit(127);
    }
    close(ends[1]);
    std::string text(65536, '\0');
    std::size_t length = 0;
    for (ssize_t got = 1; got > 0;) {
        if (text.size() - length < 4096) text.resize(2 * text.size());
        got = read(ends[0], &text[length], text.size() - length);
        if (got > 0) length += static_cast<std::size_t>(got);
    }
    close(ends[0]);
    text.resize(length);
    waitpid(process, nullptr, 0);
    const std::size_t firstLine = text.find("\n--\n");  // behind it stands what the program itself prints
    trial.Require(firstLine != std::string::npos, "the second process gave nothing");
    return text.substr(0, firstLine + 1);
}

// Two instances of this process take turns, a block of any length each; one plays another piece.
std::string EventsBesideAnother(Trial& trial, std::uint64_t seed) {
    PlugIn one(rate), other(rate);
    std::vector<float> piece = Piece(seed), foreign = Piece(seed + 1);
    for (std::size_t at = 0, block = 512; at < piece.size(); at += block) {
        block = std::min<std::size_t>(512, piece.size() - at);
        one.Feed(replacing, &piece[at], &piece[at], static_cast<std::int32_t>(block));
        if (trial.OneIn(2)) other.Call(effMainsChanged, 0, static_cast<std::intptr_t>(trial.Below(2)));
        other.Feed(replacing, &foreign[at], &foreign[at], static_cast<std::int32_t>(1 + trial.Below(block)));
    }
    return Bytes(one.events);
}

void TryPiece(Trial& trial) {
    if (const char* const told = std::getenv(pieceVariable)) {  // this is the second process
        char* rest = nullptr;
        const std::uint64_t seed = std::strtoull(told, &rest, 10);
        const std::string text = EventsOfPiece(seed) + "--\n";
        const auto written =
            write(static_cast<int>(std::strtol(rest, nullptr, 10)), text.data(), text.size());
        trial.Require(written == static_cast<ssize_t>(text.size()), "the pipe is broken");
        return;
    }
    const std::uint64_t seed = trial.random();
    const std::string events = EventsOfPiece(seed);
    trial.Require(std::count(events.begin(), events.end(), '\n') > 100, "a minute of music without notes");
    trial.Require(EventsOfPiece(seed) == events, "a second run gives other events");
    trial.Require(EventsBesideAnother(trial, seed) == events, "another instance changes the events");
    trial.Require(EventsElsewhere(trial, seed) == events, "another process gives other events");
}

const Registered pieces({"PRO-10", "gives the same events in each run, process and company",
                         inRelease | inAddress, 100, 1, 60, TryPiece});

}  // namespace
