#pragma once
#include <cstdint>
#include <string>
#include <utility>

class TBaseStream;

// Whatever can store itself on a stream. Threads: one at a time.
class TSerial {
public:
    virtual ~TSerial() = default;
    // Throws std::runtime_error with the reason as its text; the object then holds what was read so far.
    virtual void Read(TBaseStream& stream) = 0;
    // Raises nothing of its own: what fails shows in the stream's state.
    virtual void Write(TBaseStream& stream) const = 0;

protected:
    TSerial() = default;
    TSerial(const TSerial&) = default;
    TSerial& operator=(const TSerial&) = default;
};

// A pointer that shares what it points to: the last one deletes it. Threads: the count is a plain word, so
// all pointers to one object belong to one thread.
template <typename Object>
class TPtr {
public:
    explicit TPtr(Object* owned = nullptr)
        : object(owned), count(owned != nullptr ? new std::uint32_t(1) : nullptr) {}
    TPtr(const TPtr& other) : object(other.object), count(other.count) {
        if (count != nullptr) ++*count;
    }
    TPtr& operator=(TPtr other) noexcept {  // by value: taking over from itself is no special case
        std::swap(object, other.object);
        std::swap(count, other.count);
        return *this;
    }
    virtual ~TPtr() { Release(); }
    Object* operator->() const { return object; }
    Object& operator*() const { return *object; }

    Object* object;
    std::uint32_t* count;  // on the heap, shared; null beside a null object

private:
    // Not inlined, or the compiler warns of every second pointer: it cannot see that a count is above zero.
    [[gnu::noinline]] void Release() {
        if (object == nullptr || --*count > 0) return;
        delete object;
        delete count;
    }
};

// Store an object in a file, or read it from one. On success `error` is cleared and the result is true.
// "Cannot open file <path> for writing." / "... for reading." and "Writing file <path> is failed." /
// "Reading file <path> is failed." go into `error` with the result false. What Read throws passes through.
// The file is flushed before its state is looked at, so that a full disk is seen.
bool SaveSerial(const std::string& path, const TSerial& object, std::string& error);
bool LoadSerial(const std::string& path, TSerial& object, std::string& error);
