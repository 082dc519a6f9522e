#pragma once
#include <cstdint>
#include <span>
#include <string>

// What the line below the pages says.
//
// Threads: pure functions, [any] but [audio].

// "Polyphony 0.80", "Bar E2 0.75": a parameter that was changed in the window; empty for one that shows its
// value by its place alone.
std::string TouchedText(std::int32_t index, float value);

// "1:23  45 notes": a take that runs.
std::string TakeText(double seconds, std::uint32_t notes);

// "C4  note 60  261.6 Hz": a key of the keyboard, by its band.
std::string KeyText(std::int32_t band);

// "C4 E4 G4": the notes whose byte in `levels` (level_column.h) says that they sound; empty for none.
std::string SoundingText(std::span<const unsigned char> levels);
