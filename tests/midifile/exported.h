#pragma once
#include "midifile/midi_exporter.h"
#include "notes/notes.h"
#include "tests/notes/memory_stream.h"
#include "tests/support/midi_reader.h"

inline Bytes Exported(const TNotes& score, bool fixFirstBar = true) {
    MemoryStream stream;
    SaveScore(score, stream, fixFirstBar);
    return stream.data;
}
