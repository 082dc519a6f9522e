#pragma once
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <thread>

#include "harmony/chord_name.h"

// A ring of names that one thread writes and any thread reads whole. The writer never waits: it wraps what
// belongs together in a Change, and a reader that met a Change looks again. Names lie in words that are
// atomic each, so that even a look which will be thrown away is a defined one.
//
// Threads: the writer's are [audio]; Read and the operations inside a look are [any].
// Memory: sized at construction.
class NameRing {
public:
    explicit NameRing(std::size_t capacity) : slots(std::make_unique<Slot[]>(capacity)) {}

    // While it exists, looks do not count. One at a time, by the writer.
    class Change {
    public:
        explicit Change(NameRing& changed) : ring(changed) { ++ring.sequence; }
        ~Change() { ++ring.sequence; }
        Change(const Change&) = delete;
        Change& operator=(const Change&) = delete;

    private:
        NameRing& ring;
    };

    void Set(std::size_t index, const TChordName& name);  // [audio], inside a Change
    void Resize(std::size_t newSize);  // [audio], inside a Change; at most the capacity; keeps what it holds
    TChordName Get(std::size_t index) const;
    std::size_t size() const { return used; }

    // The result of look(), which no Change overlapped.
    template <typename Look>
    auto Read(Look look) const {
        for (;;) {
            const std::uint64_t before = sequence;
            auto seen = look();
            if (before % 2 == 0 && sequence == before) return seen;
            std::this_thread::yield();
        }
    }

private:
    using Words = std::array<std::uint64_t, TChordName::room / sizeof(std::uint64_t)>;
    using Slot = std::array<std::atomic<std::uint64_t>, std::tuple_size_v<Words>>;
    static_assert(sizeof(Words) == sizeof(TChordName));

    // All accesses keep one total order, which is what makes the count of changes tell.
    std::unique_ptr<Slot[]> slots;
    std::atomic<std::size_t> used{0};
    std::atomic<std::uint64_t> sequence{0};  // odd during a Change
};
