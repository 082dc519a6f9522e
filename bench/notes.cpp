// rooms: notes midifile
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <memory_resource>
#include <random>
#include <vector>

#include "midifile/midi_exporter.h"
#include "notes/notes.h"
#include "notes/stream.h"

namespace {

constexpr std::uint32_t noteCount = 100000;

struct Event {
    std::uint32_t begin, end;
    std::uint8_t pitch;
};

// Dense playing in order of time: a note each 25 ms (551 ticks), of 25 to 250 ms, so that up to 10 overlap.
std::vector<Event> Playing() {
    std::minstd_rand random(1);
    std::vector<Event> events;
    for (std::uint32_t index = 0; index < noteCount; ++index) {
        const std::uint32_t begin = index * 551;
        const auto length = static_cast<std::uint32_t>(551 + random() % (551 * 9));
        events.push_back({begin, begin + length, static_cast<std::uint8_t>(random() % 84)});
    }
    return events;
}

std::unique_ptr<TNotes> Fill(const std::vector<Event>& events) {
    auto score = std::make_unique<TNotes>();
    for (const Event& event : events) score->AddNote(event.begin, event.end, event.pitch, -624, 0, 1, 1);
    return score;
}

// Takes bytes and keeps none, so that the export alone is measured.
class NullStream : public TBaseStream {
public:
    void PutByte(std::uint8_t) override { ++size; }
    bool GetByte(std::uint8_t&) override { return false; }
    std::int32_t GetPosition() override { return size; }
    void SetPosition(std::int32_t) override {}
    std::int32_t GetSize() override { return size; }
    std::int32_t SeekToEnd() override { return size; }
    void Rewind() override {}
    bool IsAtEnd() override { return true; }

    std::int32_t size = 0;
};

void FillInOrderOfTime(benchmark::State& state) {
    const std::vector<Event> events = Playing();
    for (auto _ : state) benchmark::DoNotOptimize(Fill(events));
}
BENCHMARK(FillInOrderOfTime)->Unit(benchmark::kMillisecond);

void ExportFixedTempo(benchmark::State& state) {
    const auto score = Fill(Playing());
    for (auto _ : state) {
        NullStream stream;
        SaveScore(*score, stream, true);
        benchmark::DoNotOptimize(stream.size);
    }
}
BENCHMARK(ExportFixedTempo)->Unit(benchmark::kMillisecond);

// A bar each two seconds, a little longer each time, so that the tempo changes now and then.
void ExportWithBars(benchmark::State& state) {
    const auto score = Fill(Playing());
    std::uint32_t time = 0;
    for (std::uint32_t bar = 0; time < score->LastTime(); ++bar) {
        score->bars.emplace_hint(score->bars.end(), time, TBar{bar, 4});
        time += 44100 + bar % 100 * 40;
    }
    for (auto _ : state) {
        NullStream stream;
        SaveScore(*score, stream, true);
        benchmark::DoNotOptimize(stream.size);
    }
}
BENCHMARK(ExportWithBars)->Unit(benchmark::kMillisecond);

void WhatSoundsAtARandomTick(benchmark::State& state) {
    const auto score = Fill(Playing());
    std::minstd_rand random(2);
    std::vector<std::uint32_t> times(65536);
    for (std::uint32_t& time : times) time = static_cast<std::uint32_t>(random()) % score->LastTime();
    TNoteList sounding;
    std::size_t at = 0;
    for (auto _ : state) {
        score->NotesAt(sounding, times[at++ % times.size()]);
        benchmark::DoNotOptimize(sounding.data());
    }
}
BENCHMARK(WhatSoundsAtARandomTick);

void AnEmptyScore(benchmark::State& state) {
    const auto room = std::make_unique<std::byte[]>(sizeof(TNotes));
    for (auto _ : state) {
        auto* score = new (room.get()) TNotes();
        benchmark::DoNotOptimize(score);
        score->~TNotes();
    }
}
BENCHMARK(AnEmptyScore);

// What naming a chord needs ten times a second: eleven notes that sound together, in prepared memory.
void AScoreOfOneChordInPreparedMemory(benchmark::State& state) {
    const auto room = std::make_unique<std::byte[]>(sizeof(TNotes));
    std::vector<std::byte> memory(65536);
    for (auto _ : state) {
        std::pmr::monotonic_buffer_resource arena(memory.data(), memory.size(),
                                                  std::pmr::null_memory_resource());
        auto* score = new (room.get()) TNotes(&arena);
        for (std::uint8_t note = 0; note < 11; ++note)
            score->AddNote(0, 1000, static_cast<std::uint8_t>(36 + 4 * note), 100, 0, 1, 0);
        benchmark::DoNotOptimize(score);
        score->~TNotes();
    }
}
BENCHMARK(AScoreOfOneChordInPreparedMemory);

}  // namespace
