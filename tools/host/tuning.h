#pragma once
#include <optional>
#include <string>

#include "tools/host/audio_file.h"

inline constexpr double usualTuning = 440;                        // Hz of A4, as the plug-in expects it
inline constexpr double lowestTuning = 415, highestTuning = 466;  // Hz, about a semitone each way

// Hz of A4 by the sound itself, within a quarter tone of 440 Hz: how far the partials of the first five
// minutes lie from the semitones, in the mean. None where they favour no place between the semitones. Errors:
// as of AudioFile, and std::runtime_error for what can be read once only.
std::optional<double> FindTuning(const std::string& path, AudioFile::Channel channel);
