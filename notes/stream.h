#pragma once
#include <cstdint>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "notes/serial.h"

// A stream of bytes with a position. Threads: one at a time; no lock.
class TBaseStream {
public:
    // An object that a stored form names; nothing registers one, and the vector stays empty.
    struct TEntry {
        TPtr<TSerial> object;
        std::string name;
    };

    TBaseStream() = default;
    TBaseStream(const TBaseStream&) = delete;
    TBaseStream& operator=(const TBaseStream&) = delete;
    virtual ~TBaseStream() { registry.clear(); }

    virtual void PutByte(std::uint8_t byte) = 0;
    virtual bool GetByte(std::uint8_t& byte) = 0;  // false at the end of the data, `byte` untouched
    virtual std::int32_t GetPosition() = 0;
    virtual void SetPosition(std::int32_t position) = 0;
    virtual std::int32_t GetSize() = 0;
    virtual std::int32_t SeekToEnd() = 0;  // the new position
    virtual void Rewind() = 0;
    virtual bool IsAtEnd() = 0;

    std::vector<TEntry> registry;
};

// A file as a stream, with a buffer of its own: one span of the file, shared by reading and writing.
//
// Positions are signed 32 bits. A step past 2^31 - 1 is refused: nothing is read, and a byte that is not
// written puts the stream into its failed state.
// Errors: none are raised. Opening that fails shows in IsOpen, anything later in Failed.
// Invariants: 0 <= bufferPosition <= bufferSize; bufferDirty <= bufferValid <= bufferSize;
// bufferPosition <= bufferValid; bufferStart + bufferPosition <= 2^31 - 1.
class TFStream : public TBaseStream {
public:
    static constexpr std::int32_t smallestBuffer = 512;   // bytes; a smaller size is raised to it
    static constexpr std::int32_t defaultBuffer = 65536;  // bytes, what every caller here passes

    TFStream(const std::string& path, std::ios_base::openmode mode, std::int32_t size);
    ~TFStream() override;  // writes what awaits writing, closes the file

    void PutByte(std::uint8_t byte) override;
    bool GetByte(std::uint8_t& byte) override;
    std::int32_t GetPosition() override;
    void SetPosition(std::int32_t position) override;  // a negative one changes nothing
    std::int32_t GetSize() override;  // of the file; bytes that await writing are not counted
    std::int32_t SeekToEnd() override;
    void Rewind() override;
    bool IsAtEnd() override;  // a read has reached the end of the file, and no byte is held any more

    bool IsOpen() const { return file.is_open(); }
    bool Failed() const { return file.fail(); }  // as far as the system has been asked yet
    void Flush();                                // hands the bytes that await writing to `file`
    bool Finish();  // hands them on to the system too; false if anything failed so far

    std::fstream file;

private:
    void Fill(std::int32_t position);

    std::unique_ptr<std::uint8_t[]> buffer;
    std::int32_t bufferSize;          // bytes, fixed after construction
    std::int32_t bufferStart = 0;     // the file position of buffer[0]
    std::int32_t bufferPosition = 0;  // next byte to read or write, relative to bufferStart
    std::int32_t bufferValid = 0;     // bytes in `buffer` that hold data
    std::int32_t bufferDirty = 0;     // leading bytes of `buffer` that await writing
};
