#pragma once
#include <cstddef>

// How often the calling thread has asked for memory since it began, by `new` or by `malloc`. Under a
// sanitizer, which has an allocator of its own, nothing is counted.
std::size_t AllocationsOfThisThread();
