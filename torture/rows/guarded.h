#pragma once
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

// Memory with pages before and behind it that nobody may touch.
class GuardedPages {
public:
    explicit GuardedPages(std::size_t bytes) {
        const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
        size = (bytes + page - 1) / page * page;
        length = size + 2 * page;
        void* const all = mmap(nullptr, length, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (all == MAP_FAILED) std::abort();
        base = static_cast<unsigned char*>(all) + page;
        if (mprotect(base, size, PROT_READ | PROT_WRITE) != 0) std::abort();
    }
    ~GuardedPages() { munmap(base - (length - size) / 2, length); }
    GuardedPages(const GuardedPages&) = delete;
    GuardedPages& operator=(const GuardedPages&) = delete;

    // The last `bytes` bytes before the forbidden page; what lies before them is filled with `filling`.
    char* Last(std::size_t bytes, char filling = '\x7F') {
        std::memset(base, filling, size);
        return reinterpret_cast<char*>(base + size - bytes);
    }
    // Whether all bytes before the last `bytes` are as Last left them.
    bool Untouched(std::size_t bytes, char filling = '\x7F') const {
        return std::all_of(base, base + size - bytes,
                           [=](unsigned char byte) { return byte == static_cast<unsigned char>(filling); });
    }
    unsigned char* Begin() { return base; }
    unsigned char* End() { return base + size; }

private:
    unsigned char* base = nullptr;
    std::size_t size = 0, length = 0;
};

// A buffer with 64 KiB of a pattern before and behind it, which as samples is a number that is none and as
// audio would be heard at once.
class Moated {
public:
    static constexpr std::size_t moat = 65536;

    // The buffer begins `shift` bytes behind an address that suits every type.
    explicit Moated(std::size_t size, std::size_t shift = 0)
        : bytes(size), pages(2 * moat + size + shift), first(pages.Begin() + moat + shift) {
        for (unsigned char* at = pages.Begin(); at < pages.End(); ++at) *at = PatternAt(at);
    }
    template <typename Sample = unsigned char>
    Sample* At(std::ptrdiff_t byte = 0) {
        return reinterpret_cast<Sample*>(first + byte);
    }
    // Whether each byte of the pattern, on both sides, is as it was.
    bool Intact() { return Holds(pages.Begin(), first) && Holds(first + bytes, pages.End()); }

    const std::size_t bytes;

private:
    unsigned char PatternAt(const unsigned char* at) {
        constexpr unsigned char pattern[] = {0x34, 0x12, 0xC0, 0x7F};  // 0x7FC01234
        return pattern[static_cast<std::size_t>(at - pages.Begin()) % 4];
    }
    bool Holds(const unsigned char* from, const unsigned char* to) {
        for (; from < to; ++from)
            if (*from != PatternAt(from)) return false;
        return true;
    }
    GuardedPages pages;
    unsigned char* const first;
};
