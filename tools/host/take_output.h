#pragma once
#include <string>

#include "tools/host/take.h"

// What a take looks like outside: a table to read, one line of JSON, events as CSV. `file` is the recording's
// name as it was given. Times are in seconds from the start of the audio.

// A heading, and a row a note: start, end, name, MIDI number, velocity; then a row a change of chord.
std::string NoteTable(const std::string& file, const Take& take);

// One object, one line: file, rate, seconds, notes, chords. Bytes of the name that are no UTF-8 become
// U+FFFD.
std::string NoteJson(const std::string& file, const Take& take);

// Why little or nothing was heard and what helps, where the sound shows it: silence, a silent first channel,
// channels that cancel each other, a low level. Empty where nothing is wrong with the sound.
std::string SoundAdvice(const Take& take, bool isMix);

// The line of a file that failed: "file" and "error", the reason.
std::string FailedJson(const std::string& file, const std::string& reason);

// The line of a file that was passed over: "file", and "skipped" true.
std::string SkippedJson(const std::string& file);

// All messages by date, header first: time, sample, the three bytes, and what kind of message it is.
std::string EventCsv(const Take& take);
