#pragma once
#include "notes/memory_stream.h"
#include "notes/stream_values.h"
#include "tests/support/standard.h"

using Bytes = std::vector<std::uint8_t>;

inline std::string Text(const Bytes& bytes) {
    return {bytes.begin(), bytes.end()};
}

// What an object's Write puts on a stream.
template <typename Object>
Bytes Written(Object&& object) {
    MemoryStream stream;
    object.Write(stream);
    return {stream.bytes.begin(), stream.bytes.end()};
}
