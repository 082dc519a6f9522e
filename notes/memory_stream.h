#pragma once
#include <cstddef>
#include <string>
#include <utility>

#include "notes/stream.h"

// A stream of bytes in memory, so that a file can be made whole before it is written. Threads: one at a time.
class MemoryStream : public TBaseStream {
public:
    explicit MemoryStream(std::string content = {}) : bytes(std::move(content)) {}

    void PutByte(std::uint8_t byte) override {
        if (position == bytes.size())
            bytes.push_back(static_cast<char>(byte));
        else
            bytes[position] = static_cast<char>(byte);
        ++position;
    }
    bool GetByte(std::uint8_t& byte) override {
        if (position == bytes.size()) return false;
        byte = static_cast<std::uint8_t>(bytes[position++]);
        return true;
    }
    std::int32_t GetPosition() override { return static_cast<std::int32_t>(position); }
    void SetPosition(std::int32_t wanted) override {
        if (wanted >= 0 && static_cast<std::size_t>(wanted) <= bytes.size())
            position = static_cast<std::size_t>(wanted);
    }
    std::int32_t GetSize() override { return static_cast<std::int32_t>(bytes.size()); }
    std::int32_t SeekToEnd() override { return static_cast<std::int32_t>(position = bytes.size()); }
    void Rewind() override { position = 0; }
    bool IsAtEnd() override { return position == bytes.size(); }

    std::string bytes;

private:
    std::size_t position = 0;  // at most bytes.size()
};
