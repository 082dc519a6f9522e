#pragma once
#include <cstdint>

// Whether the windows are light or dark: a preference of the user's, kept in the per-user store, and until
// there is one they are light. All windows of this module look the same.
//
// Threads: [any] but [audio].
enum class Variant : std::int32_t { light, dark };

// From now on, for the windows that are open and those to come; false where it cannot be stored, and then for
// those alone that are open.
bool PreferVariant(Variant wanted);

void ReadPreferredVariant();      // before a window opens: what was stored since this was last asked counts
void SetVariant(Variant wanted);  // until then, for this process alone

// What the windows have now, and how often that has changed: by this an open window notices.
Variant CurrentVariant();
std::uint32_t VariantChanges();
