#pragma once
#include <array>
#include <atomic>
#include <bit>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <thread>

#include "harmony/chord_name.h"

// A name that one thread writes and any thread reads whole. The writer never waits; a reader that runs into a
// write reads again. The words are atomic each, so that even a reading which is thrown away is a defined one.
//
// Threads: Set [audio]; Get [any].
class NameSlot {
public:
    void Set(const TChordName& name) {
        const auto wanted = std::bit_cast<Words>(name);
        assert(sequence % 2 == 0);  // one writer
        ++sequence;
        for (std::size_t word = 0; word < wanted.size(); ++word) words[word] = wanted[word];
        ++sequence;
    }
    TChordName Get() const {
        for (;; std::this_thread::yield()) {
            const std::uint64_t before = sequence;
            Words seen;
            for (std::size_t word = 0; word < seen.size(); ++word) seen[word] = words[word];
            if (before % 2 == 0 && sequence == before) return std::bit_cast<TChordName>(seen);
        }
    }

private:
    using Words = std::array<std::uint64_t, TChordName::capacity / sizeof(std::uint64_t)>;
    static_assert(sizeof(Words) == sizeof(TChordName));

    // All accesses keep one total order, so a count that is even and unchanged means a whole name.
    std::array<std::atomic<std::uint64_t>, std::tuple_size_v<Words>> words{};
    std::atomic<std::uint64_t> sequence{0};  // odd during a write
};
