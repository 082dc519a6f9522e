#pragma once
#include <cstddef>

// How often the calling thread has asked `new` for memory, in any of its forms, since it began.
std::size_t AllocationsOfThisThread();
