#pragma once
#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <utility>
#include <vector>

#include "notes/stream.h"
#include "notes/stream_values.h"

using Bytes = std::vector<std::uint8_t>;

// The plainest stream there can be: a vector and an index. Tests read what was written from `data`.
class MemoryStream : public TBaseStream {
public:
    explicit MemoryStream(Bytes content = {}) : data(std::move(content)) {}

    void PutByte(std::uint8_t byte) override {
        if (position >= data.size()) data.resize(position + 1);  // a step past the end leaves zeros
        data[position++] = byte;
    }
    bool GetByte(std::uint8_t& byte) override {
        if (position >= data.size()) return false;
        byte = data[position++];
        return true;
    }
    std::int32_t GetPosition() override { return static_cast<std::int32_t>(position); }
    void SetPosition(std::int32_t place) override { position = static_cast<std::size_t>(place); }
    std::int32_t GetSize() override { return static_cast<std::int32_t>(data.size()); }
    std::int32_t SeekToEnd() override {
        position = data.size();
        return GetPosition();
    }
    void Rewind() override { position = 0; }
    bool IsAtEnd() override { return position >= data.size(); }

    Bytes data;
    std::size_t position = 0;
};

// What an object's Write puts on a stream.
template <typename Object>
Bytes Written(Object&& object) {
    MemoryStream stream;
    object.Write(stream);
    return stream.data;
}
