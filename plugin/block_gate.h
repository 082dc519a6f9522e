#pragma once
#include <atomic>
#include <cassert>
#include <thread>

// Who may touch the detector: one thread at a time, and the block path never waits for its turn. A block that
// finds the gate taken passes unanalysed; whoever else wants in (a suspend, a new rate) waits a little for
// the block in flight to end.
//
// Threads: [any]. A thread that is inside may ask again, since hosts call back from within a block.
class BlockGate {
public:
    // False when any thread is inside, this one included.
    bool TryEnter() {
        std::thread::id none;
        return inside.compare_exchange_strong(none, std::this_thread::get_id());
    }
    void Leave() {
        assert(IsMine());
        inside.store(std::thread::id());
    }
    bool IsMine() const { return inside.load() == std::this_thread::get_id(); }

    // Leaves at the end of its scope, by exception too.
    class Leaving {
    public:
        explicit Leaving(BlockGate& left) : gate(left) {}
        ~Leaving() { gate.Leave(); }
        Leaving(const Leaving&) = delete;
        Leaving& operator=(const Leaving&) = delete;

    private:
        BlockGate& gate;
    };

private:
    // One total order with the words that ask for work behind the gate: who leaves and then finds no request
    // was not asked; who asks and then finds the gate taken is heard by whoever leaves.
    std::atomic<std::thread::id> inside{std::thread::id()};
    static_assert(std::atomic<std::thread::id>::is_always_lock_free);
};
