#include "notes/stream.h"

#include <algorithm>
#include <limits>

#include "base/file_path.h"

namespace {

constexpr std::int32_t lastPosition = std::numeric_limits<std::int32_t>::max();

// The state of `file` without the mark that a read has reached the end, which would stop the next write.
void ForgetEnd(std::fstream& file) {
    file.clear(file.rdstate() & ~std::ios_base::eofbit);
}

}  // namespace

TFStream::TFStream(const std::string& path, std::ios_base::openmode mode, std::int32_t size)
    : file(FilePath(path), mode),
      buffer(std::make_unique<std::uint8_t[]>(static_cast<std::size_t>(std::max(size, smallestBuffer)))),
      bufferSize(std::max(size, smallestBuffer)) {}

TFStream::~TFStream() {
    Flush();
}

void TFStream::Flush() {
    if (bufferDirty <= 0) return;
    ForgetEnd(file);
    file.seekp(bufferStart);
    file.write(reinterpret_cast<const char*>(buffer.get()), bufferDirty);
    bufferDirty = 0;
}

bool TFStream::Finish() {
    Flush();
    ForgetEnd(file);
    file.flush();
    return !file.fail();
}

void TFStream::Fill(std::int32_t position) {
    Flush();
    bufferStart = position;
    bufferPosition = 0;
    bufferValid = 0;
    ForgetEnd(file);
    if (file.fail()) return;
    file.seekg(position);
    file.read(reinterpret_cast<char*>(buffer.get()), std::min(bufferSize, lastPosition - position));
    bufferValid = static_cast<std::int32_t>(file.gcount());
    if (file.eof() && !file.bad()) file.clear(std::ios_base::eofbit);  // a short read is no failure
}

bool TFStream::GetByte(std::uint8_t& byte) {
    if (bufferPosition >= bufferValid) {
        Fill(bufferStart + bufferPosition);
        if (bufferValid < 1) return false;
    }
    byte = buffer[static_cast<std::size_t>(bufferPosition++)];
    return true;
}

// The bytes that await writing are the leading ones up to the furthest byte put since the last flush: a
// write after a step back within the span keeps those behind it.
void TFStream::PutByte(std::uint8_t byte) {
    if (bufferPosition >= bufferSize) {
        Flush();
        bufferStart += bufferPosition;
        bufferPosition = 0;
        bufferValid = 0;
    }
    if (bufferPosition == lastPosition - bufferStart) {
        Flush();
        file.setstate(std::ios_base::failbit);
        return;
    }
    buffer[static_cast<std::size_t>(bufferPosition++)] = byte;
    bufferDirty = std::max(bufferDirty, bufferPosition);
    bufferValid = std::max(bufferValid, bufferPosition);
}

std::int32_t TFStream::GetPosition() {
    return bufferStart + bufferPosition;
}

void TFStream::SetPosition(std::int32_t position) {
    if (position < 0) return;
    if (position >= bufferStart && position - bufferStart <= bufferValid) {
        bufferPosition = position - bufferStart;
        return;
    }
    Flush();
    ForgetEnd(file);
    bufferStart = position;
    bufferPosition = 0;
    bufferValid = 0;
}

std::int32_t TFStream::GetSize() {
    const std::ios_base::iostate end = file.rdstate() & std::ios_base::eofbit;
    ForgetEnd(file);
    const std::streamoff here = file.tellg();
    file.seekg(0, std::ios_base::end);
    const std::streamoff size = file.tellg();
    file.seekg(here);
    file.setstate(end);
    return static_cast<std::int32_t>(std::clamp<std::streamoff>(size, 0, lastPosition));
}

std::int32_t TFStream::SeekToEnd() {
    Flush();
    ForgetEnd(file);
    file.seekg(0, std::ios_base::end);
    const std::streamoff end = file.tellg();
    if (end < 0 || end > lastPosition) {
        file.setstate(std::ios_base::failbit);
        return GetPosition();
    }
    bufferStart = static_cast<std::int32_t>(end);
    bufferPosition = 0;
    bufferValid = 0;
    return bufferStart;
}

void TFStream::Rewind() {
    SetPosition(0);
}

bool TFStream::IsAtEnd() {
    return file.eof() && bufferPosition >= bufferValid;
}
