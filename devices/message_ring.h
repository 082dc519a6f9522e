#pragma once
#include <array>
#include <atomic>
#include <cassert>
#include <cstddef>
#include <cstdint>

// A queue of fixed size from many threads to one. Nobody ever waits: a full ring refuses, and a thread that
// was interrupted in the middle of a Push only delays what stands behind its own message.
//
// Each cell counts whose turn it is: its place for the writer of that place, one more once the message stands
// in it, and a whole round more after it was taken. (The bounded queue of Dmitry Vyukov.)
//
// Threads: Push [any]; Ready [any]; Front, Place and Pop by one reader at a time. Another thread may become
// the reader, if the handover orders memory. Memory: nothing is allocated after construction.
template <typename Message, std::size_t capacity>
class MessageRing {
    static_assert((capacity & (capacity - 1)) == 0, "a place is cut to a cell by its low bits");

public:
    MessageRing() {
        for (std::size_t cell = 0; cell < capacity; ++cell)
            cells[cell].turn.store(cell, std::memory_order_relaxed);
    }
    MessageRing(const MessageRing&) = delete;
    MessageRing& operator=(const MessageRing&) = delete;

    // False when the ring is full. `place` counts the messages since the ring was made.
    bool Push(const Message& message, std::uint64_t& place) {
        place = tail.load(std::memory_order_relaxed);
        for (;;) {
            Cell& cell = cells[place % capacity];
            const std::uint64_t turn = cell.turn.load(std::memory_order_acquire);
            if (turn == place) {
                if (!tail.compare_exchange_weak(place, place + 1, std::memory_order_relaxed)) continue;
                cell.message = message;
                cell.turn.store(place + 1);
                return true;
            }
            if (turn < place) return false;  // still held by the round before
            place = tail.load(std::memory_order_relaxed);
        }
    }
    bool Push(const Message& message) {
        std::uint64_t place;
        return Push(message, place);
    }

    // The next message has come. Exact for the reader; for others it may have been taken meanwhile. One order
    // holds over all Pushes and these looks, so that a reader who gives up the reading and then looks once
    // more cannot miss a message whose writer saw the reading taken.
    bool Ready() const {
        const std::uint64_t place = head.load(std::memory_order_relaxed);
        return cells[place % capacity].turn.load() == place + 1;
    }
    std::uint64_t Place() const { return head.load(std::memory_order_relaxed); }
    const Message& Front() const { return cells[Place() % capacity].message; }  // while Ready
    void Pop() {
        assert(Ready());
        const std::uint64_t place = Place();
        cells[place % capacity].turn.store(place + capacity, std::memory_order_release);
        head.store(place + 1, std::memory_order_relaxed);
    }

private:
    struct Cell {
        std::atomic<std::uint64_t> turn;
        Message message{};
    };
    std::array<Cell, capacity> cells;
    alignas(64) std::atomic<std::uint64_t> tail{
        0};  // the next place to write; apart from what the reader turns
    alignas(64) std::atomic<std::uint64_t> head{0};  // the next place to read
};
