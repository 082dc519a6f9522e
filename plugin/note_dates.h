#pragma once
#include <cstdint>

// How notes to a VST 2 host are dated: where they began, which is before the block more often than not, or
// never before the block's first sample; by itself, the second in hosts known to drop what lies before it.
enum class NoteDates : std::int32_t { automatic, whenBegun, neverEarly };

const char* NameOf(NoteDates dates);  // as menus have it, and the store

// The user's preference, in the per-user store; automatic until there is one.
//
// Threads: [any] but [audio]: both work on files.
NoteDates ReadPreferredNoteDates();
bool StorePreferredNoteDates(NoteDates wanted);  // false where that cannot be written
