#include "tools/host/read_ahead.h"

#include <utility>

// Where no thread can be had, the library reads on the thread that asks.
ReadAhead::ReadAhead(AudioFile& from, std::size_t newLength, bool beside)
    : audio(from),
      length(newLength),
      policy(beside ? std::launch::async | std::launch::deferred : std::launch::deferred) {
    Begin();
}

void ReadAhead::Begin() {
    reading = std::async(policy, [this] {
        read.samples.resize(length);
        read.samples.resize(audio.Read(read.samples.data(), length));
        read.progress = audio.Progress();
        read.loudest = audio.Loudest();
    });
}

const ReadAhead::Piece& ReadAhead::Next() {
    reading.get();
    std::swap(heard, read);
    if (!heard.samples.empty()) Begin();
    return heard;
}
