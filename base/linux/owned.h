#pragma once
#include <cstdlib>
#include <memory>

// What a C library has allocated and leaves to its caller to free, as the replies of a display.
struct Freed {
    void operator()(void* memory) const { std::free(memory); }
};
template <typename T>
using Owned = std::unique_ptr<T, Freed>;
