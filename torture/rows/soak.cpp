// A day of audio.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "torture/session.h"

namespace {

constexpr std::int32_t rate = 48000;
constexpr int hours = 25;  // past 2^32 samples, which take 24.9 of them
constexpr std::int32_t block = 512;
constexpr std::int64_t hour = std::int64_t{3600} * rate / block;  // blocks
constexpr std::int64_t silentBlocks =
    std::int64_t{4} * rate / block;  // before each hour; past which all outputs stop

// Bytes of memory that the process holds of its own.
double Resident() {
    std::FILE* const file = std::fopen("/proc/self/statm", "r");
    long size = 0, resident = 0, shared = 0;
    const bool read = file != nullptr && std::fscanf(file, "%ld %ld %ld", &size, &resident, &shared) == 3;
    if (file != nullptr) std::fclose(file);
    return read ? 4096.0 * static_cast<double>(resident - shared) : -1;
}

std::ptrdiff_t Entries(const char* folder) {
    const std::filesystem::directory_iterator listing(folder);
    return std::distance(begin(listing), end(listing));
}

// Case 0 does not record, case 1 does. Each hour begins in silence and brings the same audio.
void TryADay(Trial& trial) {
    const bool records = trial.number == 1;
    Session session(rate);
    trial.Require(session.Open(), "the plug-in does not open");
    session.Call(effOpen);
    session.AllOutputsOn();
    if (!records) session.Object().stopRecording();
    const std::vector<float> music = BusyMusic(trial, rate, 30);
    const std::vector<float> silence(block);
    const auto pieces = static_cast<std::int64_t>(music.size()) / block;
    const std::ptrdiff_t files = Entries("/proc/self/fd"), threads = Entries("/proc/self/task");
    double afterAMinute = 0;
    std::uint64_t firstHash = 0, firstEvents = 0;
    for (int number = 0; number < hours; ++number) {
        for (std::int64_t i = 0; i < silentBlocks; ++i) session.Process(trial, silence.data(), block);
        session.clockBegin = session.clock;
        session.eventHash = session.events = 0;
        for (std::int64_t i = 0; i < hour; ++i) {
            session.Process(trial, music.data() + i % pieces * block, block);
            if (i % 16 == 0) session.Call(effEditIdle);
            if (number == 0 && i == hour / 60) afterAMinute = Resident();
        }
        if (number == 0) firstHash = session.eventHash, firstEvents = session.events;
        trial.Require(session.events == firstEvents && session.eventHash == firstHash,
                      "hour " + std::to_string(number + 1) + " brought other events than the first");
    }
    trial.Require(firstEvents > 1000, "hardly any note was played");
    const double growth = Resident() - afterAMinute;
    // Two lists, of which the take has room ahead for what waits in the other.
    const double allowed =
        65536 + (records ? 16 * 1.5 * 2 *
                               (static_cast<double>(firstEvents) * hours + 4.0 * TRTRecording::preparedRoom)
                         : 0);
    Trial::Figure(records ? "growth with a take, KiB" : "growth, KiB", growth / 1024);
    Trial::Figure("events an hour", static_cast<double>(firstEvents));
    trial.Require(growth <= allowed, "memory grew by " + std::to_string(growth) + " bytes");
    trial.Require(Entries("/proc/self/fd") == files && Entries("/proc/self/task") == threads,
                  "a file or a thread is left");
}

const Registered day({"MEM-6", "a day of audio leaves memory and events as they were", inRelease, 2, 1, 1800,
                      TryADay, 6, true});

}  // namespace
