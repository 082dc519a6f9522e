// The audio thread neither waits, nor allocates, nor leaves for the system.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "torture/session.h"
#include "torture/watch.h"

namespace {

constexpr std::int32_t rates[] = {44100, 48000, 96000};

Trial* caseInHand = nullptr;

[[noreturn]] void FailByName(const char* name) {
    caseInHand->Fail(std::string("inside a process call: ") + name);
}

// The two locks that the audio thread may take: the recorder's and the recording's leaf lock. Each is the one
// mutex of its object.
void AllowTheTwoLocks(const Session& session) {
    InsideCall::AllowLocksIn(&session.Object().noteRecorder, sizeof(TNoteRecorder));
    InsideCall::AllowLocksIn(&session.Recording(), sizeof(TRTRecording));
}

// A change that a host or a user may make between two blocks.
void ChangeSomething(Session& session, Trial& trial) {
    const auto index = static_cast<std::int32_t>(trial.Below(96));
    const float value = static_cast<float>(trial.Below(1001)) / 1000.0F;
    switch (trial.Below(40)) {
        case 0: session.Call(effMainsChanged, 0, 0), session.Call(effMainsChanged, 0, 1); break;
        case 1:
            session.Call(effSetSampleRate, 0, 0, nullptr, static_cast<float>(rates[trial.Below(3)]));
            break;
        case 2: session.Object().stopRecording(), session.Object().startRecording(); break;
        case 3: session.Set(paramDeviceEnabled, 0), session.Set(paramDeviceEnabled, 1); break;
        default: session.Set(index, value);
    }
}

// A minute of audio in blocks of random lengths, after the largest block has been seen once.
void TryAMinute(Trial& trial) {
    caseInHand = &trial;
    const std::int32_t rate = rates[trial.number % 3];
    Session session(rate);
    trial.Require(session.Open(), "the plug-in does not open");
    session.Call(effOpen);
    session.AllOutputsOn();
    const std::vector<float> music = BusyMusic(trial, rate, 10);
    std::vector<float> other(static_cast<std::size_t>(rate));
    const std::vector<float> silence(Session::largestBlock);
    session.Process(trial, music.data(), Session::largestBlock);

    AllowTheTwoLocks(session);
    InsideCall::told = FailByName;
    const bool kernelWatches = InsideCall::WatchSystemCalls();
    session.watched = true;
    const std::int64_t minute = std::int64_t{60} * rate;
    std::int64_t nextChange = 0;
    while (session.clock < minute) {
        // A piece of music, or a second of noise, or a silence past which the further outputs stop.
        const std::uint64_t kind = trial.Below(8);
        session.Set(paramPolyphony, 0.87F), session.Set(paramSensitivity, 0.875F);
        for (const auto output : {paramOutputToHost, paramDeviceEnabled, paramChordsEnabled})
            session.Set(output, 1);
        const std::vector<float>* piece = &music;
        std::size_t left = music.size() / (1 + trial.Below(4));
        if (kind == 0) {
            for (float& sample : other) sample = 1e-3F * (static_cast<float>(trial.Below(1000)) - 499.3F);
            piece = &other;
            left = other.size();
        }
        if (kind == 1) left = static_cast<std::size_t>(rate) * (1 + trial.Below(5));
        const auto limit = std::int32_t{1} << trial.Below(13);
        for (std::size_t at = 0; at < left;) {
            const std::size_t count = std::min(
                left - at, static_cast<std::size_t>(1 + trial.Below(static_cast<std::uint64_t>(limit))));
            session.Process(trial, kind == 1 ? silence.data() : piece->data() + at,
                            static_cast<std::int32_t>(count), trial.Below(3));
            at += count;
            if (session.clock < nextChange) continue;
            session.Call(effEditIdle);
            ChangeSomething(session, trial);
            nextChange = session.clock + minute / 170;  // 10,000 in an hour
        }
    }
    trial.Figure("kernel watches", kernelWatches ? 1 : 0);
    trial.Figure("events a minute", static_cast<double>(session.events));
    trial.Require(session.events > 100 && session.devices.sent > 100, "hardly any note was played");
}

// --- how long the audio thread may have to wait ---

constexpr double longestHold = 50;  // us

// Plays as fast as it can, for as long as the others are at it: music, and silences past which the outputs
// stop.
void PlayWhile(Session& session, Trial& trial, const std::atomic<bool>& others) {
    const std::vector<float> music = BusyMusic(trial, 48000, 10);
    const std::vector<float> silence(512);
    session.Process(trial, music.data(), Session::largestBlock);  // makes the room for blocks
    session.watched = true;
    while (others) {
        for (std::size_t at = 0; at + 512 <= music.size(); at += 512)
            session.Process(trial, music.data() + at, 512);
        for (int block = 0; block < 400; ++block) session.Process(trial, silence.data(), 512);  // 4.3 s
    }
    session.watched = false;
}

// What other threads do, by number, in the middle of a take: 96 parameters, then the rest.
constexpr std::uint64_t doings = parameterCount + 5;
void Do(Session& session, std::uint64_t number, int turn) {
    if (number < parameterCount)
        return session.Set(static_cast<std::int32_t>(number), 0.3F + 0.5F * static_cast<float>(turn % 2));
    switch (number - parameterCount) {
        case 0: session.Object().stopRecording(); break;
        case 1: session.Object().startRecording(); break;
        case 2: session.Call(effEditIdle); break;
        case 3: session.Call(effMainsChanged, 0, 0); break;
        default:
            session.Call(effSetSampleRate, 0, 0, nullptr, 44100.0F + static_cast<float>(turn % 2));
            break;
    }
}

// One doing with 12,000 finished notes that have not reached the take yet, 20 minutes of playing. The machine
// itself may lengthen a hold at times, by an interrupt, but not each time that the same thing is done.
void TryOneDoing(Trial& trial) {
    Session session(48000);
    trial.Require(session.Open(), "the plug-in does not open");
    session.Call(effOpen);
    const std::vector<float> music = BusyMusic(trial, 48000, 1);
    AllowTheTwoLocks(session);
    double least = 1e9;
    for (int turn = 0; turn < 6; ++turn) {
        session.AllOutputsOn();
        for (std::size_t at = 0; at + 512 <= music.size(); at += 512)
            session.Process(trial, music.data() + at, 512);
        std::vector<TRecordEvent>& pending = session.Recording().pending;
        for (std::uint32_t note = 0; note < 12000; ++note) {
            pending.push_back({note, 0x644590U, 0});
            pending.push_back({note + 1, 0x004580U, 0});
        }
        LockHolds::Measure();
        Do(session, trial.number, turn);
        least = std::min(least, LockHolds::Measured().longest);
        session.Object().stopRecording();
    }
    Trial::Figure("longest of one doing, us", least);
    trial.Require(least <= longestHold, "a lock was held for " + std::to_string(least) + " us");
}

// What the machine itself adds to a piece of work, by interrupts and by whatever else it does: a loop that
// takes about as long as the longest hold should, over and over, on the thread that also holds the locks.
class Machine {
public:
    void Work() {
        timespec begin{}, end{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &begin);
        for (int i = 0; i < 8000; ++i) word = word * 1664525 + 1013904223;
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &end);
        const double us = 1e6 * static_cast<double>(end.tv_sec - begin.tv_sec) +
                          1e-3 * static_cast<double>(end.tv_nsec - begin.tv_nsec);
        least = std::min(least, us);
        lengthened += us > least + longestHold ? 1 : 0;
        ++count;
    }
    double Share() const { return static_cast<double>(lengthened) / static_cast<double>(count); }

private:
    volatile std::uint32_t word = 1;
    double least = 1e9;
    long lengthened = 0, count = 0;
};

// Three seconds; the audio thread works through about an hour meanwhile.
void TryBesideAudio(Trial& trial) {
    caseInHand = &trial;
    Session session(48000);
    trial.Require(session.Open(), "the plug-in does not open");
    session.Call(effOpen);
    session.AllOutputsOn();
    AllowTheTwoLocks(session);
    InsideCall::told = FailByName;
    std::atomic<bool> others{true};
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(3);
    LockHolds::Figures held[2];
    Machine machine;
    std::thread parameters([&] {
        LockHolds::Measure();
        std::minstd_rand random(static_cast<unsigned>(trial.number) + 1);
        while (others) {
            const auto index = static_cast<std::int32_t>(random() % 96);
            session.Set(index, static_cast<float>(random() % 1001) / 1000.0F);
            machine.Work();
            if (random() % 64 == 0) session.Set(paramOutputToHost, 1), session.Set(paramDeviceEnabled, 1);
            if (random() % 64 == 0) session.Set(paramPolyphony, 0.87F), session.Set(paramSensitivity, 0.875F);
        }
        held[0] = LockHolds::Measured();
    });
    std::thread window([&] {
        LockHolds::Measure();
        CORVAguivst& object = session.Object();
        std::vector<unsigned char> levels;
        for (int tick = 0; std::chrono::steady_clock::now() < end; ++tick) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
            session.Call(effEditIdle);
            object.buildLevels(levels);
            object.currentChordText();
            if (tick % 500 != 499) continue;
            object.stopRecording();
            object.nothingRecorded();
            object.startRecording();
        }
        others = false;
        held[1] = LockHolds::Measured();
    });
    PlayWhile(session, trial, others);
    parameters.join();
    window.join();
    Trial::Figure("speed, x real time", static_cast<double>(session.clock) / 48000 / 3);
    const std::uint64_t beyond = held[0].beyond + held[1].beyond, all = held[0].count + held[1].count;
    const double share = static_cast<double>(beyond) / static_cast<double>(all);
    Trial::Figure("beyond 50 us beside audio, of a million", 1e6 * share);
    Trial::Figure("by the machine alone", 1e6 * machine.Share());
    // What a hold's own work makes too long would be too long by the thousand.
    trial.Require(share <= 0.0005 + 2 * machine.Share(),
                  std::to_string(beyond) + " of " + std::to_string(all) + " holds took more than 50 us");
}

void TryHolds(Trial& trial) {
    trial.number < doings ? TryOneDoing(trial) : TryBesideAudio(trial);
}

const Registered waits({"RTS-4", "no other thread holds a lock of the audio thread for more than 50 us",
                        inRelease, doings + 60, 1, 60, TryHolds, 180});
const Registered quiet({"RTS-1", "process calls neither wait, nor allocate, nor leave for the system",
                        inRelease, 60, 1, 120, TryAMinute, 30});

}  // namespace
