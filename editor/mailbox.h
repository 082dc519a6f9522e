#pragma once
#include <atomic>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "parameters/parameters.h"

// Carries "parameter index has this value" from any thread to the editor's. One slot an index: a value that
// was not fetched yet is replaced by the newer one, so the views never run behind and no change costs memory.
//
// Indices are parameters, codeRecording and codeChordText; others are dropped.
// Threads: post [any], wait-free; drain [ui]. Two threads that post to one index at once leave one of the two
// values.
class Mailbox {
public:
    static constexpr std::int32_t slots = codeEnd;

    void post(std::int32_t index, float value) {
        if (index < 0 || index >= slots) return;
        const auto slot = static_cast<std::size_t>(index);
        values[slot].store(value, std::memory_order_relaxed);
        fresh[slot / wordBits].fetch_or(std::uint64_t{1} << (slot % wordBits), std::memory_order_release);
    }

    // Hands each fresh index and its value to take(index, value), ascending by index.
    template <typename Take>
    void drain(Take&& take) {
        for (std::size_t word = 0; word < words; ++word) {
            std::uint64_t left = fresh[word].exchange(0, std::memory_order_acquire);
            for (; left != 0; left &= left - 1) {
                const std::size_t slot = word * wordBits + static_cast<std::size_t>(std::countr_zero(left));
                take(static_cast<std::int32_t>(slot), values[slot].load(std::memory_order_relaxed));
            }
        }
    }

private:
    static constexpr std::size_t wordBits = 64;
    static constexpr std::size_t words = (slots + wordBits - 1) / wordBits;

    std::atomic<float> values[slots] = {};
    std::atomic<std::uint64_t> fresh[words] =
        {};  // one bit a slot; set after its value, cleared before it is read
};
