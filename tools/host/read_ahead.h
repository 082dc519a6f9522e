#pragma once
#include <cstddef>
#include <future>
#include <vector>

#include "tools/host/audio_file.h"

// An audio file in pieces, of which the next is read on a thread of its own while the one before it is heard.
// There are never more than these two.
//
// Threads: one thread owns this, and leaves the file alone meanwhile. Destruction waits for the reading that
// is under way. Errors: those of AudioFile::Read, from Next, in place of the piece in which they occur.
class ReadAhead {
public:
    struct Piece {
        std::vector<float> samples;  // empty at the end; else as many as asked for, fewer in the last piece
        double progress = 0;         // the rest as the file gives it behind these samples
        AudioFile::Peaks loudest;
    };

    // Without `beside`, a piece is read when it is asked for, on the thread that asks.
    ReadAhead(AudioFile& from, std::size_t newLength, bool beside);

    const Piece& Next();  // valid until it is called again

private:
    void Begin();

    AudioFile& audio;
    const std::size_t length;  // samples a piece
    const std::launch policy;
    Piece heard, read;
    std::future<void> reading;  // into `read`; last: it ends before what it uses
};
