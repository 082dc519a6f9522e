#pragma once
#include <cstddef>
#include <new>

// An owning array of `count` elements that starts at a cache line. It keeps no length: the owner knows the
// count. New elements are left uninitialised (those with a constructor are constructed).
//
// Errors: an exhausted allocator leaves construction and Resize by std::bad_alloc; after a failed Resize the
// array is empty.
// Threads: as its owner.
template <typename T>
class TAutoArray {
public:
    explicit TAutoArray(std::size_t count = 0) : elements(Allocate(count)) {}
    virtual ~TAutoArray() { Free(); }
    TAutoArray(const TAutoArray&) = delete;
    TAutoArray& operator=(const TAutoArray&) = delete;

    // Frees the old elements and allocates `count` new ones; keeps and initialises nothing.
    void Resize(std::size_t count) {
        Free();
        elements = nullptr;
        elements = Allocate(count);
    }

    T* Data() { return elements; }
    const T* Data() const { return elements; }
    T& operator[](std::ptrdiff_t index) { return elements[index]; }  // signed, as band arithmetic is
    const T& operator[](std::ptrdiff_t index) const { return elements[index]; }

private:
    static constexpr std::align_val_t cacheLine{64};
    static T* Allocate(std::size_t count) { return count == 0 ? nullptr : new (cacheLine) T[count]; }
    void Free() { ::operator delete[](elements, cacheLine); }

    T* elements;
};
